#pragma once

#include <QByteArray>
#include <QObject>
#include <functional>
#include <optional>

/// Lets a later start of the program leave its wish to the instance that runs already. There is one
/// instance for each user, display and folder of settings.
class SingleInstance : public QObject {
 public:
    /// Leaves the wish to the running instance: whether it took it, nothing when there is none.
    /// Needs no application object.
    static std::optional<bool> passOn(const QByteArray& wish);

    SingleInstance() = default;
    ~SingleInstance() override;

    /// Makes this process the instance; `obey` gets the wishes of later starts. False when there is
    /// one already.
    bool become(std::function<void(const QByteArray& wish)> obey);

 private:
    void accept();

    std::function<void(const QByteArray&)> obey_;
    int socket_ = -1;
};

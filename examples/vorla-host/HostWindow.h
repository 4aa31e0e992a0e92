#pragma once

#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QWidget>
#include <functional>

/// The host's window: a button that captures, and the last picture.
class HostWindow : public QWidget {
 public:
    explicit HostWindow(std::function<void()> capture);

    void showPicture(const QImage& picture, const QString& message);
    /// The window's menu, also the tray's. The window owns it.
    [[nodiscard]] QMenu* menu() const { return menu_; }
    void showMessage(const QString& message);

 protected:
    void resizeEvent(QResizeEvent* event) override;

 private:
    void fitPicture();

    QPixmap picture_;
    QMenu* menu_;
    QLabel* view_;
    QLabel* message_;
};

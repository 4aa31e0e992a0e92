#pragma once

#include <QPoint>
#include <QPointer>
#include <QWidget>
#include <functional>
#include <vector>

namespace vorla::test {

/// A user's hand on a panel: real input events of the toolkit, from its window downward. Positions
/// are in points from the panel's upper left; (0, 0) cannot be reached. Every call returns when
/// nested loops that it has begun are over; it is harmless when the panel goes away meanwhile.
class Pointer {
 public:
    explicit Pointer(QWidget* panel) : panel_(panel) {}

    void moveTo(QPoint at);
    /// Presses at the path's first point, goes along it and releases at its end. `during` runs
    /// before the release, in the nested loop of the drag, and may move on.
    void drag(std::vector<QPoint> path, const std::function<void()>& during = {});
    /// So many clicks in quick succession.
    void click(QPoint at, int times = 1, Qt::MouseButton button = Qt::LeftButton);
    void leave();
    void key(Qt::Key key);

 private:
    [[nodiscard]] QWindow* window() const;
    QPointer<QWidget> panel_;
    QPoint at_;
};

/// Runs the event loop until the condition holds, or for five seconds at most.
bool waitUntil(const std::function<bool()>& condition);
/// Runs what is due in the event loop.
void runPending();

}  // namespace vorla::test

#include "platform/view/mouseevents.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>
#include <QStyleHints>
#include <cmath>

#include "platform/view/PanelStack.h"
#include "platform/view/PanelSurface.h"
#include "platform/view/VLPanel.h"

namespace vorla {
namespace {

/// Clicks are counted for the whole program: a pointer can be in one place only.
class ClickCounter {
 public:
    int countOf(const QMouseEvent& press, WId window) {
        const QPointF place = press.globalPosition();
        // A press that is passed on to a parent arrives there with its place rounded to points.
        const bool same = window == window_ && press.timestamp() == time_ &&
                          press.button() == button_ && (place - place_).manhattanLength() < 2.0;
        if (same && count_ > 0) return count_;
        type_ = press.type();
        const QStyleHints* hints = QGuiApplication::styleHints();
        const auto interval = static_cast<quint64>(hints->mouseDoubleClickInterval());
        const QPointF moved = place - place_;
        const bool continues = window == window_ && press.button() == button_ &&
                               press.timestamp() - time_ <= interval &&
                               std::abs(moved.x()) <= hints->mouseDoubleClickDistance() &&
                               std::abs(moved.y()) <= hints->mouseDoubleClickDistance();
        count_ = continues ? count_ + 1 : 1;
        time_ = press.timestamp();
        button_ = press.button();
        place_ = place;
        window_ = window;
        return count_;
    }
    void becameDrag() { count_ = 0; }
    [[nodiscard]] QPointF place() const { return place_; }
    [[nodiscard]] int current() const { return count_; }
    [[nodiscard]] bool repeats(const QMouseEvent& event) const {
        return event.type() == QEvent::MouseButtonDblClick && type_ == QEvent::MouseButtonPress &&
               event.timestamp() == time_ && event.button() == button_;
    }

 private:
    int count_ = 0;
    QEvent::Type type_ = QEvent::None;
    quint64 time_ = 0;
    Qt::MouseButton button_ = Qt::NoButton;
    QPointF place_;
    WId window_ = 0;
};

ClickCounter& clickCounter() {
    static ClickCounter counter;
    return counter;
}

}  // namespace

bool repeatsPress(const QMouseEvent& event) {
    return clickCounter().repeats(event);
}

void forgetClicks() {
    clickCounter() = {};
}

QPointF lastPressPosition() {
    return clickCounter().place();
}

double heightOf(const QWidget& panel) {
    const auto* exact = dynamic_cast<const VLPanel*>(&panel);
    return exact ? exact->extent().height : panel.height();
}

double scaleOf(const QWidget& widget) {
    const QScreen* screen = widget.screen();
    return screen ? screen->devicePixelRatio() : 1.0;
}

VLPoint locationInWindow(QPointF inPanel, const QWidget& panel) {
    const double scale = scaleOf(panel);
    // The tolerance keeps a whole pixel whole at scales such as 1.25, where 1/scale is not exact.
    const auto middle = [scale](double v) { return (std::floor(v * scale + 1e-6) + 0.5) / scale; };
    return {middle(inPanel.x()), heightOf(panel) - middle(inPanel.y())};
}

VLMouseEvent mouseEvent(const QSinglePointEvent& event, const QWidget& receiver,
                        VLMouseEvent::Type type) {
    if (type == VLMouseEvent::Type::LeftMouseDragged) clickCounter().becameDrag();
    // The position in the receiver is rounded to points on the way, and the one on the desktop
    // means nothing where screens differ in scale: the one in the panel has neither fault.
    return {type, locationInWindow(event.scenePosition(), *receiver.window()), 0,
            event.modifiers()};
}

VLMouseEvent mouseEvent(const QMouseEvent& event, const QWidget& receiver,
                        VLMouseEvent::Type type) {
    VLMouseEvent converted =
        mouseEvent(static_cast<const QSinglePointEvent&>(event), receiver, type);
    const bool press =
        event.type() == QEvent::MouseButtonPress || event.type() == QEvent::MouseButtonDblClick;
    if (press)
        converted.clickCount = clickCounter().countOf(event, receiver.window()->winId());
    else if (event.type() == QEvent::MouseButtonRelease)
        converted.clickCount = clickCounter().current();
    return converted;
}

VLPoint pointerLocationInWindow(const QWidget& panel) {
    if (const auto* exact = dynamic_cast<const VLPanel*>(&panel))
        if (const auto place = PanelStack::shared().surface().pointer(*exact))
            return locationInWindow(*place, panel);
    return locationInWindow(panel.mapFromGlobal(QPointF(QCursor::pos())), panel);
}

}  // namespace vorla

#include "platform/view/VLEventTracker.h"

#include <QApplication>
#include <QEventLoop>
#include <QMouseEvent>
#include <QPointer>
#include <QTimer>
#include <QWindow>
#include <memory>
#include <utility>
#include <vector>

#include "platform/view/VLView.h"
#include "platform/view/mouseevents.h"

namespace {

struct Deferred {
    QPointer<QObject> context;
    std::function<void()> task;
};

bool tracking = false;
std::vector<Deferred>& deferredTasks() {
    static std::vector<Deferred> tasks;
    return tasks;
}

/// Takes the drag's events out of the stream and holds the rest of the input back.
class DragFilter : public QObject {
 public:
    DragFilter(VLView& view, unsigned mask, const VLEventTracker::Handler& handler)
        : view_(&view), mask_(mask), handler_(handler) {}

    bool run(std::chrono::milliseconds timeout) {
        silence_.setSingleShot(true);
        silence_.setTimerType(Qt::PreciseTimer);
        silence_.setInterval(timeout);
        QObject::connect(&silence_, &QTimer::timeout, this, [this] {
            handler_(nullptr);
            stop();
        });
        silence_.start();
        qApp->installEventFilter(this);
        // Ends without the handler only when the program quits: to try again would spin for ever.
        if (panelIsThere()) loop_.exec();
        qApp->removeEventFilter(this);
        silence_.stop();
        return stopped_ && panelIsThere();
    }

    /// Delivers what was held back, to the windows that are still there.
    void releaseHeldInput() {
        for (auto& [window, event] : held_)
            if (window && window->isVisible()) QCoreApplication::postEvent(window, event.release());
    }

    bool eventFilter(QObject* receiver, QEvent* event) override {
        switch (event->type()) {
            case QEvent::MouseMove:
                return receiver == view_ && deliver(static_cast<QMouseEvent*>(event),
                                                    VLMouseEvent::Type::LeftMouseDragged);
            case QEvent::MouseButtonRelease:
                if (static_cast<QMouseEvent*>(event)->button() != Qt::LeftButton)
                    return hold(receiver, event);
                return receiver == view_ &&
                       deliver(static_cast<QMouseEvent*>(event), VLMouseEvent::Type::LeftMouseUp);
            case QEvent::MouseButtonPress:
            case QEvent::MouseButtonDblClick:
            case QEvent::KeyPress:
            case QEvent::KeyRelease:
            case QEvent::ShortcutOverride:
            case QEvent::Wheel:
                return hold(receiver, event);
            case QEvent::Hide:
                if (view_ && receiver == view_->window()) stop();
                return false;
            default:
                return false;
        }
    }

 private:
    [[nodiscard]] bool panelIsThere() const { return view_ && view_->window()->isVisible(); }

    void stop() {
        stopped_ = true;
        loop_.quit();
    }

    bool deliver(QMouseEvent* event, VLMouseEvent::Type type) {
        const unsigned bit = type == VLMouseEvent::Type::LeftMouseUp
                                 ? VLEventTracker::LeftMouseUp
                                 : VLEventTracker::LeftMouseDragged;
        if (stopped_ || !(mask_ & bit)) return false;
        silence_.start();
        const VLMouseEvent converted = vorla::mouseEvent(*event, *view_, type);
        if (handler_(&converted) == VLEventTracker::Flow::Stop) stop();
        return true;
    }

    /// Only at the level of windows: what reaches a widget there has been let through already.
    bool hold(QObject* receiver, QEvent* event) {
        if (!receiver->isWindowType() || stopped_) return false;
        held_.push_back({static_cast<QWindow*>(receiver), std::unique_ptr<QEvent>(event->clone())});
        return true;
    }

    struct HeldEvent {
        QPointer<QWindow> window;
        std::unique_ptr<QEvent> event;
    };

    QPointer<VLView> view_;
    unsigned mask_;
    const VLEventTracker::Handler& handler_;
    QEventLoop loop_;
    QTimer silence_;
    bool stopped_ = false;
    std::vector<HeldEvent> held_;
};

}  // namespace

bool VLEventTracker::trackEventsMatchingMask(VLView& view, unsigned mask,
                                             std::chrono::milliseconds timeout,
                                             const Handler& handler) {
    if (std::exchange(tracking, true)) return false;
    DragFilter filter(view, mask, handler);
    const bool panelIsThere = filter.run(timeout);
    tracking = false;
    filter.releaseHeldInput();
    for (Deferred& deferred : std::exchange(deferredTasks(), {}))
        if (deferred.context) deferred.task();
    return panelIsThere;
}

bool VLEventTracker::isTracking() {
    return tracking;
}

void VLEventTracker::whenIdle(QObject* context, std::function<void()> task) {
    if (!tracking) {
        task();
        return;
    }
    deferredTasks().push_back({context, std::move(task)});
}

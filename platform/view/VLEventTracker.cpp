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

#include "platform/base/raii.h"
#include "platform/view/VLView.h"
#include "platform/view/mouseevents.h"

namespace {

struct Deferred {
    QPointer<QObject> context;
    std::function<void()> task;
};

bool tracking = false;
std::vector<Deferred>& deferredTasks() {
    static vorla::NoDestructor<std::vector<Deferred>> tasks;
    return *tasks;
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
        lastPosition_ = vorla::lastPressPosition();
        qApp->installEventFilter(this);
        // Ends without the handler only when the program quits: to try again would spin for ever.
        if (panelIsThere()) loop_.exec();
        qApp->removeEventFilter(this);
        silence_.stop();
        return stopped_ && panelIsThere();
    }

    /// Has what was held back delivered, in order, to the windows that are still there.
    void releaseHeldInput() {
        for (HeldEvent& held : held_)
            QMetaObject::invokeMethod(
                qApp,
                [window = held.window, make = std::move(held.make)] {
                    if (window && window->isVisible())
                        QCoreApplication::sendEvent(window, make().get());
                },
                Qt::QueuedConnection);
    }

    bool eventFilter(QObject* receiver, QEvent* event) override {
        switch (event->type()) {
            case QEvent::MouseMove:
                if (stopped_) return hold(receiver, event);
                return receiver == view_ && deliver(static_cast<QMouseEvent*>(event),
                                                    VLMouseEvent::Type::LeftMouseDragged);
            case QEvent::MouseButtonRelease:
                if (stopped_ || static_cast<QMouseEvent*>(event)->button() != Qt::LeftButton)
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
        if (!(mask_ & bit)) return false;
        silence_.start();
        if (type == VLMouseEvent::Type::LeftMouseUp) deliverLostMovement(event);
        lastPosition_ = event->globalPosition();
        if (!stopped_ && view_) hand(vorla::mouseEvent(*event, *view_, type));
        return true;
    }

    /// When its queue has grown, the toolkit keeps only the last movement in it, also one that
    /// comes after a release: a quick drag would look like a click.
    void deliverLostMovement(QMouseEvent* release) {
        if (!(mask_ & VLEventTracker::LeftMouseDragged)) return;
        if (release->globalPosition() == lastPosition_) return;
        hand(vorla::mouseEvent(static_cast<const QSinglePointEvent&>(*release), *view_,
                               VLMouseEvent::Type::LeftMouseDragged));
    }

    void hand(const VLMouseEvent& event) {
        if (handler_(&event) == VLEventTracker::Flow::Stop) stop();
    }

    /// Only at the level of windows: what reaches a widget there has been let through already. It
    /// goes on after the stop, for the loop first deals with all input that has come in by then.
    bool hold(QObject* receiver, QEvent* event) {
        if (!receiver->isWindowType()) return false;
        held_.push_back({static_cast<QWindow*>(receiver), maker(*event)});
        return true;
    }

    using Maker = std::function<std::shared_ptr<QEvent>()>;
    struct HeldEvent {
        QPointer<QWindow> window;
        Maker make;
    };

    /// The toolkit's copy of a mouse event shares its place with every later event of the pointer,
    /// so it is made anew from its facts when it is delivered.
    static Maker maker(const QEvent& event) {
        const auto* mouse = dynamic_cast<const QMouseEvent*>(&event);
        if (!mouse) return [copy = std::shared_ptr<QEvent>(event.clone())] { return copy; };
        return [type = mouse->type(), local = mouse->position(), scene = mouse->scenePosition(),
                global = mouse->globalPosition(), button = mouse->button(),
                buttons = mouse->buttons(), modifiers = mouse->modifiers(),
                device = mouse->pointingDevice(), time = mouse->timestamp()] {
            const auto made = std::make_shared<QMouseEvent>(type, local, scene, global, button,
                                                            buttons, modifiers, device);
            made->setTimestamp(time);
            return made;
        };
    }

    QPointer<VLView> view_;
    unsigned mask_;
    const VLEventTracker::Handler& handler_;
    QEventLoop loop_;
    QTimer silence_;
    bool stopped_ = false;
    QPointF lastPosition_;
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

VLEventTracker::EveryMovement::EveryMovement()
    : joined_(QCoreApplication::testAttribute(Qt::AA_CompressHighFrequencyEvents)) {
    QCoreApplication::setAttribute(Qt::AA_CompressHighFrequencyEvents, false);
}

VLEventTracker::EveryMovement::~EveryMovement() {
    QCoreApplication::setAttribute(Qt::AA_CompressHighFrequencyEvents, joined_);
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

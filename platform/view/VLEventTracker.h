#pragma once

#include <chrono>
#include <functional>

#include "platform/view/VLMouseEvent.h"

class QObject;
class VLView;

/// The nested event loop of a drag.
///
/// While it runs, drags and releases of the left button go to the handler; keys, other buttons and
/// the wheel are held back and delivered in order afterwards. Timers and the screen go on. The loop
/// ends on the handler's word, when no event came within the time-out, when the view's panel goes
/// away under it, or when the program quits. One drag at a time: a second call while one runs
/// returns at once.
class VLEventTracker {
 public:
    /// Events that a drag may ask for, as bits.
    enum Mask : unsigned { LeftMouseUp = 1U << 2, LeftMouseDragged = 1U << 6 };
    enum class Flow { Continue, Stop };

    /// Receives each event; null stands for the time-out.
    using Handler = std::function<Flow(const VLMouseEvent* event)>;

    /// Returns when the drag is over. False when it ended because the panel went away or the
    /// program quits: the caller then touches nothing that belongs to the session. The view itself
    /// still exists.
    static bool trackEventsMatchingMask(VLView& view, unsigned mask,
                                        std::chrono::milliseconds timeout, const Handler& handler);

    /// While it lives, every movement of the pointer becomes an event. The toolkit joins those that
    /// wait in its queue, and a line drawn quickly would lose its bends.
    class EveryMovement {
     public:
        EveryMovement();
        ~EveryMovement();
        EveryMovement(const EveryMovement&) = delete;
        EveryMovement& operator=(const EveryMovement&) = delete;

     private:
        bool joined_;
    };

    [[nodiscard]] static bool isTracking();

    /// Runs `task` at once when no drag is being tracked, else as soon as the drag is over, unless
    /// `context` no longer exists by then.
    static void whenIdle(QObject* context, std::function<void()> task);
};

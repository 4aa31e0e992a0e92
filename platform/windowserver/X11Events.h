#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <memory>

#include "platform/windowserver/X11Connection.h"

namespace vorla {

/// What the server announces on our connection, and what the toolkit says of its screens, turned
/// into two calls. Needs the application's event loop: nothing is delivered without one. The calls
/// are made from that loop, never from inside another call. Main thread.
class X11Events {
 public:
    struct Handlers {
        /// Called once after the last of a burst of changes.
        std::function<void()> displaysMayHaveChanged;
        std::function<void()> activeSpaceChanged;
    };

    X11Events(std::shared_ptr<X11Connection> connection, Handlers handlers);
    ~X11Events();
    X11Events(const X11Events&) = delete;
    X11Events& operator=(const X11Events&) = delete;

    /// Joins the application's event loop as soon as there is one; may be called at any time.
    void attach();

    /// Looks through events that came along with answers to requests: the socket does not report
    /// those any more.
    void drain();

    /// Has `displaysMayHaveChanged` called again, after the usual pause.
    void askAgain();

 private:
    struct Loop;
    void socketIsReadable();
    void handle(const xcb_generic_event_t& event);
    void spaceMayHaveChanged();
    uint32_t currentSpace();

    std::shared_ptr<X11Connection> connection_;
    Handlers handlers_;
    uint32_t space_ = 0;
    std::unique_ptr<Loop> loop_;
};

}  // namespace vorla

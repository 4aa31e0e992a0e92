#pragma once

#include <xcb/randr.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/windowserver/WindowServer.h"
#include "platform/windowserver/X11Connection.h"
#include "platform/windowserver/displayLayout.h"

namespace vorla {

/// The displays of the connected server. Main thread.
class X11Displays {
 public:
    explicit X11Displays(std::shared_ptr<X11Connection> connection);

    /// Asks the server and the toolkit. Nothing when the connection is broken.
    std::vector<Display> read();
    /// What was last read, read now when there is nothing or `forget` was called.
    const std::vector<Display>& current();
    void forget() { isCurrent_ = false; }
    /// Whether the toolkit's screens lie where the server's monitors do: after a change, the
    /// toolkit may hear of it later than we do. True when there is no toolkit to ask.
    bool toolkitAgrees();
    /// Among `current`; null for an unknown one.
    const Display* find(uint32_t displayID);

 private:
    /// Nothing where the server has no list of monitors.
    using MonitorsAsked = std::optional<xcb_randr_get_monitors_cookie_t>;
    [[nodiscard]] MonitorsAsked askMonitors() const;
    std::vector<NativeMonitor> readMonitors(const MonitorsAsked& asked);
    uint32_t idOf(const std::string& name);

    std::shared_ptr<X11Connection> connection_;
    std::map<uint32_t, std::string> monitorNames_;  ///< by atom
    std::map<std::string, uint32_t> ids_;
    std::vector<Display> displays_;
    bool isCurrent_ = false;
};

}  // namespace vorla

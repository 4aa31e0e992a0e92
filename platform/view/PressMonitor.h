#pragma once

#include <QtCore/Qt>
#include <functional>
#include <memory>

#include "platform/base/geometry.h"

class QWidget;
class VLOverlayPanel;
class VLPanel;

namespace vorla {

/// Sees every press in the session's windows before it is delivered, and lets it go on: for menus
/// that close on a press elsewhere. While a drag is tracked, presses wait, and are seen when they
/// are delivered. The handler may end the monitor. Main thread.
class PressMonitor {
 public:
    struct Press {
        VLPanel* panel;           ///< the screen's panel
        VLOverlayPanel* overlay;  ///< the child panel that it is on; null on the screen's content
        QWidget* widget;          ///< the innermost view or widget that it is on
        VLPoint location;         ///< in the screen panel's coordinates
        Qt::MouseButton button;
    };
    using Handler = std::function<void(const Press&)>;

    explicit PressMonitor(Handler handler);
    ~PressMonitor();
    PressMonitor(const PressMonitor&) = delete;
    PressMonitor& operator=(const PressMonitor&) = delete;

 private:
    class Filter;
    std::unique_ptr<Filter> filter_;
};

}  // namespace vorla

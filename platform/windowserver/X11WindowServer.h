#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/windowserver/GrabSegments.h"
#include "platform/windowserver/WindowServer.h"
#include "platform/windowserver/X11Connection.h"
#include "platform/windowserver/X11Displays.h"
#include "platform/windowserver/X11Events.h"
#include "platform/windowserver/X11WindowList.h"
#include "platform/windowserver/X11WindowPictures.h"

namespace vorla {

/// The window server of an X11 desktop, over a connection of its own. Displays are those of the
/// toolkit once there is an application object, and the server's monitors at scale 1 before.
///
/// Pictures of displays are of format RGB32, whose highest byte is left as the server has it: never
/// read it as alpha.
class X11WindowServer : public WindowServer {
 public:
    /// Null, with a log line, when there is no server to connect to.
    static std::unique_ptr<X11WindowServer> create();
    ~X11WindowServer() override;

    bool isConnected() override { return connection_->isAlive(); }
    VLCaptureError obstacle() override;
    std::vector<Display> displays() override;
    std::optional<std::vector<ServerWindow>> windows(uint32_t displayID) override;
    QImage imageOfDisplay(uint32_t displayID, VLRect rect) override;
    ArrivingImage arrivingImageOfDisplay(uint32_t displayID) override;
    QImage imageOfWindow(uint32_t displayID, uint32_t number, WindowPicture picture,
                         const QImage& fallback) override;
    double alphaAtCentre(uint32_t number) override;
    void keepWindows() override;
    void releaseWindows() override;
    void finish(const std::function<bool()>& meanwhile) override;
    std::optional<VLPoint> pointerLocation(uint32_t displayID) override;
    std::string activeApplicationName() override;
    void prepare() override;

 private:
    class Call;
    explicit X11WindowServer(std::shared_ptr<X11Connection> connection);
    std::vector<Display> readDisplays();
    bool readList();
    /// Of a whole display, or of a rectangle of it as `imageOfDisplay` has it.
    ArrivingImage grab(uint32_t displayID, const std::optional<VLRect>& part);
    void displaysMayHaveChanged();
    bool displaysHaveChanged();
    /// The window as the list that was read last has it.
    [[nodiscard]] std::optional<X11Window> listed(uint32_t number) const;

    std::shared_ptr<X11Connection> connection_;
    std::shared_ptr<GrabSegments> segments_;
    X11Displays displays_;
    X11WindowList windowList_;
    X11WindowPictures pictures_;
    X11Events events_;
    std::vector<Display> told_;        ///< the displays as `onDisplaysChanged` last reported them
    int checks_ = 0;                   ///< how often the toolkit was waited for
    std::vector<X11Window> lastList_;  ///< front to back, as read last in this session
};

}  // namespace vorla

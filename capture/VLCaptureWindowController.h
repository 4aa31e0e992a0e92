#pragma once

#include <vorla/VLNotifications.h>

#include <QImage>
#include <QPointer>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "capture/VLCaptureWindow.h"
#include "platform/base/NotificationCenter.h"
#include "platform/windowserver/WindowServer.h"
#include "selection/VLCaptureViewController.h"
#include "windows/VLCaptureWindowInfo.h"

class VLCaptureWindowControllerDelegate {
 public:
    virtual ~VLCaptureWindowControllerDelegate() = default;
    virtual void captureDidCancel() {}
    virtual void captureDidFinishWithImage(const QImage& /*image*/, bool /*needSave*/,
                                           bool /*isHighResolution*/) {}
};

/// Everything that a session puts on one screen: the frozen picture, the windows to snap to, the
/// panel and the surface on it. Reads the screen when it is made and builds the panel later, so
/// that all screens can be read before anything of ours covers one. Main thread.
class VLCaptureWindowController : public VLCaptureWindowDelegate,
                                  public VLCaptureViewControllerDelegate,
                                  public std::enable_shared_from_this<VLCaptureWindowController> {
 public:
    /// Reads the windows and takes the picture. `frame` has the screen's size at the zero point.
    /// Null when there is no such screen.
    static std::shared_ptr<VLCaptureWindowController> create(const VLRect& frame,
                                                             const vorla::Display& screen);
    ~VLCaptureWindowController() override;

    void setDelegate(std::weak_ptr<VLCaptureWindowControllerDelegate> delegate) {
        delegate_ = std::move(delegate);
    }

    /// Builds the panel and the surface on it. Without a picture the panel stays empty.
    void openPanel();
    /// Paints more of the panel before it is shown; false when there is nothing to paint.
    bool paintAhead();
    /// Shows the panel and gives it the keyboard. The window under the pointer is highlighted.
    void becomeActive();
    void closeWindow();

    [[nodiscard]] uint32_t displayID() const { return displayID_; }
    [[nodiscard]] VLCaptureWindow* window() const { return window_; }
    [[nodiscard]] const std::shared_ptr<VLCaptureViewController>& captureViewController() const {
        return captureViewController_;
    }
    [[nodiscard]] const std::vector<std::shared_ptr<VLCaptureWindowInfo>>& windowInfoArray() const {
        return windowInfoArray_;
    }

    /// Called once when the panel's first picture is on the screen.
    void setPaintedHandler(std::function<void()> handler);

    /// The windows that the selection may snap to, front to back, and last the Desktop record;
    /// empty when the window server had no list. `frame` is the screen's global frame. The first
    /// call also takes the screen's picture.
    std::vector<std::shared_ptr<VLCaptureWindowInfo>> windowInfoArrayOfScreenFrame(
        const VLRect& frame);

    /// The front-most window that the point (local to the screen) is in and that is not transparent
    /// in its middle; the last record when there is none.
    std::shared_ptr<VLCaptureWindowInfo> windowInfoAtPostion(VLPoint point) override;
    void captureDidCancel() override;
    void captureDidFinishWithImage(const QImage& image, bool needSave) override;

 private:
    VLCaptureWindowController(const VLRect& frame, const vorla::Display& screen);
    void registerForChangeThemeNotification();
    void handleChangeThemeNotification();
    [[nodiscard]] std::shared_ptr<VLCaptureWindowInfo> recordOfWindow(
        const vorla::ServerWindow& window, const VLRect& frame) const;

    VLRect frame_;
    vorla::Display screen_;
    uint32_t displayID_;
    double scaleFactor_;
    VLRect screenFrame_;
    std::weak_ptr<VLCaptureWindowControllerDelegate> delegate_;
    std::vector<std::shared_ptr<VLCaptureWindowInfo>> windowInfoArray_;
    vorla::FrozenScreen frozen_;
    std::optional<VLPoint> pointer_;  ///< as the session began
    QPointer<VLCaptureWindow> window_;
    std::shared_ptr<VLCaptureViewController> captureViewController_;
    vorla::NotificationObservers observers_;
};

#pragma once

#include <vorla/VLWindowOwners.h>
#include <QImage>
#include <cstdint>
#include <memory>
#include <string>

#include "platform/base/geometry.h"

/// One on-screen window as a target that the selection can snap to. Main thread.
class VLCaptureWindowInfo {
 public:
    virtual ~VLCaptureWindowInfo() = default;

    /// The record that stands for the whole screen and closes every list.
    static std::shared_ptr<VLCaptureWindowInfo> desktopInfo(VLSize screenSize, double scaleFactor);

    uint32_t displayID = 0;
    uint32_t windowID = 0;  ///< the window server's number; all ones for the Desktop record
    int32_t pid = 0;        ///< -1 for the Desktop record
    int32_t level = 0;      ///< -1 for the Desktop record, else 0
    double scaleFactor = 1.0;
    std::string name;    ///< the owner's name
    VLRect windowFrame;  ///< local to the screen, in points

    /// The frozen picture of the whole screen: stands in for what a window's owner does not give.
    QImage frozenScreen;

    /// Whether the window's own picture has almost no alpha in its middle: such a window is passed
    /// over. Asks the window server while no picture has been made.
    [[nodiscard]] bool isTransparent();

    /// The window's own picture without its shadow, made at the first call; null for the Desktop
    /// record, or when the window no longer exists.
    QImage windowImage() { return windowImageIsKeyWindow(false); }
    /// The key window's picture is cut out of the frozen screen as it looks, overlaps included.
    QImage windowImageIsKeyWindow(bool isKeyWindow);
    /// The picture with its shadow, made at the first call together with a new `windowImage`; null
    /// like that.
    QImage windowImageWithShadow();

 private:
    [[nodiscard]] bool isDesktop() const;
    /// Takes the picture anew; what was there stays if the window no longer exists.
    void grabWindowImage();

    QImage windowImage_;
    QImage windowImageWithShadow_;
    bool isTransparent_ = false;
};

/// Marks windows of the browsers that are named above.
class VLSpecialWindowInfo : public VLCaptureWindowInfo {};

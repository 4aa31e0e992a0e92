#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/windowserver/WindowServer.h"

namespace vorla {

/// A window server without a desktop: what it returns is scripted. For logic that must not
/// need a display, and for cases that a real server does not show on demand. Main thread.
class MemoryWindowServer : public WindowServer {
 public:
    /// A scripted window. `bounds` of the entry is not used: the place is `nativeFrame`, and the
    /// bounds are worked out for each display that is asked about.
    struct Window {
        ServerWindow entry;
        PixelRect nativeFrame;
        int shadow = 0;  ///< pixels around the frame in a picture with shadow
        int title = 0;   ///< rows at the top that are no content
        double alpha = 1.0;
        uint32_t colour = 0xff808080U;  ///< of its picture, 0xAARRGGBB, not premultiplied
    };

    /// Lays displays out: identifiers 1, 2, ... and points as for a real server. Does not fire.
    void setDisplays(const std::vector<std::pair<PixelRect, double>>& nativeFramesAndScales);
    /// Front to back; nothing stands for a server that publishes no list.
    void setWindows(std::optional<std::vector<Window>> windows) { windows_ = std::move(windows); }
    void setActiveApplicationName(std::string name) { activeName_ = std::move(name); }
    /// The native desktop's pixels, from the upper left of the first display's native frame; where
    /// there are none, a display is of the colour of `desktopPixel`.
    void setDesktopImage(QImage image) { desktop_ = std::move(image); }
    /// With `fails`, every picture is the null image from now on.
    void setPicturesFail(bool fails) { picturesFail_ = fails; }

    void fireDisplaysChanged() const {
        if (onDisplaysChanged) onDisplaysChanged();
    }
    void fireActiveSpaceChanged() const {
        if (onActiveSpaceChanged) onActiveSpaceChanged();
    }

    /// Colour of the desktop at a native pixel when there is no desktop image: every pixel of a
    /// 256 x 256 block differs.
    static uint32_t desktopPixel(int nativeX, int nativeY);

    std::vector<Display> displays() override { return displays_; }
    std::optional<std::vector<ServerWindow>> windows(uint32_t displayID) override;
    QImage imageOfDisplay(uint32_t displayID, VLRect rect) override;
    ArrivingImage arrivingImageOfDisplay(uint32_t displayID) override;
    QImage imageOfWindow(uint32_t displayID, uint32_t number, WindowPicture picture,
                         const QImage& fallback) override;
    double alphaAtCentre(uint32_t number) override;
    void keepWindows() override {
        ++keeps;
        isKeeping = true;
    }
    void releaseWindows() override { isKeeping = false; }
    std::string activeApplicationName() override { return activeName_; }
    void prepare() override { ++preparations; }

    // What was asked for so far, for tests to look at.
    int displayGrabs = 0;
    int windowGrabs = 0;
    int windowLists = 0;
    int alphaReads = 0;
    int keeps = 0;
    int preparations = 0;
    bool isKeeping = false;

 private:
    [[nodiscard]] const Display* find(uint32_t displayID) const;
    [[nodiscard]] const Window* findWindow(uint32_t number) const;

    std::vector<Display> displays_;
    std::optional<std::vector<Window>> windows_ = std::vector<Window>();
    std::string activeName_;
    QImage desktop_;
    bool picturesFail_ = false;
};

}  // namespace vorla

#include "windows/VLCaptureWindowInfo.h"

#include "imaging/ImageHelpers.h"
#include "windows/VLCaptureUtilities.h"

using vorla::WindowPicture;
using vorla::WindowServer;

namespace {

QImage picture(const VLCaptureWindowInfo& info, WindowPicture kind) {
    const auto server = WindowServer::shared();
    if (!server) return {};
    return server->imageOfWindow(info.displayID, info.windowID, kind, info.frozenScreen);
}

}  // namespace

std::shared_ptr<VLCaptureWindowInfo> VLCaptureWindowInfo::desktopInfo(VLSize screenSize,
                                                                      double scaleFactor) {
    auto info = std::make_shared<VLCaptureWindowInfo>();
    info->windowFrame = VLRect::make({}, screenSize);
    info->windowID = static_cast<uint32_t>(-1);
    info->pid = -1;
    info->level = -1;
    info->name = VLDESKTOP;
    info->scaleFactor = scaleFactor;
    return info;
}

bool VLCaptureWindowInfo::isDesktop() const {
    return level == -1 && pid == -1 && windowID == static_cast<uint32_t>(-1);
}

bool VLCaptureWindowInfo::isTransparent() {
    if (windowImage_.isNull() && !isDesktop()) {
        const auto server = WindowServer::shared();
        isTransparent_ = server && server->alphaAtCentre(windowID) < 0.01;
    }
    return isTransparent_;
}

QImage VLCaptureWindowInfo::windowImageIsKeyWindow(bool isKeyWindow) {
    if (isDesktop()) return {};
    if (!windowImage_.isNull()) return windowImage_;
    if (isKeyWindow) {
        windowImage_ = vorla::imagePart(frozenScreen, windowFrame);
        return windowImage_;
    }
    grabWindowImage();
    return windowImage_;
}

void VLCaptureWindowInfo::grabWindowImage() {
    const QImage image = picture(*this, WindowPicture::Frame);
    if (image.isNull()) return;
    windowImage_ = image;
    isTransparent_ = VLCaptureUtilities::isTransparentImage(
        image, {static_cast<double>(image.width() / 2), static_cast<double>(image.height() / 2)});
}

QImage VLCaptureWindowInfo::windowImageWithShadow() {
    if (isDesktop()) return {};
    if (windowImageWithShadow_.isNull()) {
        grabWindowImage();
        windowImageWithShadow_ = picture(*this, WindowPicture::FrameWithShadow);
    }
    return windowImageWithShadow_;
}

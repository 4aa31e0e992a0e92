#include "windows/VLCaptureUtilities.h"

#include <algorithm>
#include <cmath>

#include "platform/base/Bundle.h"
#include "platform/base/VLLog.h"

using vorla::WindowServer;

bool VLCaptureUtilities::isScreenHighResolution(const vorla::Display& screen) {
    return screen.scale > 1.0;
}

uint32_t VLCaptureUtilities::displayIDofScreen(const vorla::Display& screen) {
    return screen.displayID;
}

vorla::ArrivingImage VLCaptureUtilities::imageOfScreen(const vorla::Display& screen) {
    if (screen.displayID == 0 || screen.frame.isEmpty()) {
        VLLogError("%s: \"%s\" is no screen", __func__, screen.name.c_str());
        return {};
    }
    const auto server = WindowServer::shared();
    return server ? server->arrivingImageOfDisplay(screen.displayID) : vorla::ArrivingImage();
}

QImage VLCaptureUtilities::imageOfDisplay(uint32_t displayID, const VLRect& withSelectedRect) {
    const auto server = WindowServer::shared();
    if (withSelectedRect.isNull() || !server) return {};
    return server->imageOfDisplay(displayID, withSelectedRect);
}

std::string VLCaptureUtilities::getFirstActiveWindowName() {
    const auto server = WindowServer::shared();
    return server ? server->activeApplicationName() : std::string();
}

VLPoint VLCaptureUtilities::fixedPoint(VLPoint point, const VLRect& inRect) {
    return {std::min(std::max(point.x, 0.0), inRect.maxX() - 1.0),
            std::min(std::max(point.y, 0.0), inRect.maxY() - 1.0)};
}

VLRect VLCaptureUtilities::fixedRect(VLRect rect, const VLRect& inRect) {
    rect.x = std::max(rect.x, inRect.x);
    rect.y = std::max(rect.y, inRect.y);
    if (rect.maxX() > inRect.maxX()) rect.x = inRect.maxX() - rect.width - 1.0;
    if (rect.maxY() > inRect.maxY()) rect.y = inRect.maxY() - rect.height - 1.0;
    return rect;
}

VLRect VLCaptureUtilities::cropRect(VLRect rect, const VLRect& inRect) {
    const double pastRight = rect.maxX() - inRect.maxX();
    const double pastTop = rect.maxY() - inRect.maxY();
    if (rect.x < inRect.x) {
        rect.width -= inRect.x - rect.x;
        rect.x = inRect.x;
    }
    if (rect.y < inRect.y) {
        rect.height -= inRect.y - rect.y;
        rect.y = inRect.y;
    }
    if (pastRight > 0.0) rect.width -= pastRight;
    if (pastTop > 0.0) rect.height -= pastTop;
    return rect;
}

VLRect VLCaptureUtilities::minRectWithFirstPoint(VLPoint firstPoint, VLPoint secondPoind) {
    // The origin passes through single precision, the size does not: selections keep the exact
    // size that the pointer spanned.
    const auto lower = [](double a, double b) {
        return static_cast<double>(std::min(static_cast<float>(a), static_cast<float>(b)));
    };
    return {lower(firstPoint.x, secondPoind.x), lower(firstPoint.y, secondPoind.y),
            std::abs(firstPoint.x - secondPoind.x), std::abs(firstPoint.y - secondPoind.y)};
}

VLRect VLCaptureUtilities::expandRect(const VLRect& rect, double withLengh) {
    return expandRectWithWidth(rect, withLengh, withLengh);
}

VLRect VLCaptureUtilities::expandRectWithWidth(const VLRect& rect, double width, double height) {
    return rect.insetBy(-width / 2.0, -height / 2.0);
}

VLRect VLCaptureUtilities::rectWithCenter(VLPoint center, double width, double height) {
    return {center.x - width / 2.0, center.y - height / 2.0, width, height};
}

bool VLCaptureUtilities::isTransparentImage(const QImage& image, VLPoint withPoint) {
    const QPoint pixel(static_cast<int>(withPoint.x), static_cast<int>(withPoint.y));
    if (!image.valid(pixel)) return true;
    return !image.hasAlphaChannel() ? false : qAlpha(image.pixel(pixel)) / 255.0 < 0.01;
}

bool VLCaptureUtilities::isChineseLanguage() {
    return vorla::preferredLanguage() == "zh-Hans";
}

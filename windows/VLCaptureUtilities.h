#pragma once

#include <QImage>
#include <cstdint>
#include <string>

#include "platform/base/geometry.h"
#include "platform/windowserver/WindowServer.h"

/// Geometry that selection and editor share, and the pictures of displays.
///
/// Rectangles have their origin at the lower left and y upward. Main thread.
class VLCaptureUtilities {
 public:
    VLCaptureUtilities() = delete;

    [[nodiscard]] static bool isScreenHighResolution(const vorla::Display& screen);
    [[nodiscard]] static uint32_t displayIDofScreen(const vorla::Display& screen);

    /// The whole display as the window server shows it now, of which rows may still be on their
    /// way; null (and a log line) when it is gone.
    [[nodiscard]] static vorla::ArrivingImage imageOfScreen(const vorla::Display& screen);
    /// A rectangle of a display, local to it and in points, made whole outwards; null when nothing
    /// of it can be had.
    [[nodiscard]] static QImage imageOfDisplay(uint32_t displayID, const VLRect& withSelectedRect);

    /// Name of the active application as windows carry it; empty when there is none.
    [[nodiscard]] static std::string getFirstActiveWindowName();

    /// Raises negative coordinates to 0, whatever the rectangle's origin, then lowers them to one
    /// unit short of its right and top edges.
    [[nodiscard]] static VLPoint fixedPoint(VLPoint point, const VLRect& inRect);
    /// Moves a rectangle inside another without changing its size. It may touch the left and bottom
    /// edges but stops one unit short of the right and top ones.
    [[nodiscard]] static VLRect fixedRect(VLRect rect, const VLRect& inRect);
    /// Cuts off what sticks out. A rectangle wholly outside comes out with a negative size.
    [[nodiscard]] static VLRect cropRect(VLRect rect, const VLRect& inRect);
    /// The rectangle spanned by two points.
    [[nodiscard]] static VLRect minRectWithFirstPoint(VLPoint firstPoint, VLPoint secondPoind);
    /// Grows (or, below 0, shrinks) both dimensions by the length, keeping the centre.
    [[nodiscard]] static VLRect expandRect(const VLRect& rect, double withLengh);
    [[nodiscard]] static VLRect expandRectWithWidth(const VLRect& rect, double width,
                                                    double height);
    [[nodiscard]] static VLRect rectWithCenter(VLPoint center, double width, double height);

    /// Whether the picture's device pixel at a point (y downward, as pictures are stored) has an
    /// alpha below 0.01. A pixel outside counts as transparent.
    [[nodiscard]] static bool isTransparentImage(const QImage& image, VLPoint withPoint);

    /// Whether the user reads simplified Chinese first.
    [[nodiscard]] static bool isChineseLanguage();
};

#pragma once

#include <vorla/VLCaptureOutcome.h>

#include <QByteArray>
#include <QImage>
#include <cmath>
#include <string>

#include "platform/base/geometry.h"

namespace vorla {

// What the rest of the program asks of a picture. A picture's size in points is its size in pixels
// divided by its device pixel ratio. Any thread.

/// Width and height in pixels; the zero size for a null image.
VLSize pixelSize(const QImage& image);

/// Whether the picture has more than one pixel to a point.
bool isHighReolution(const QImage& image);

/// The resolution that a file states: a point is 1/72 inch, so a picture of a screen at twice the
/// pixels has 144 dots per inch and opens at its natural size elsewhere.
inline double dotsPerInch(const QImage& image) {
    return 72.0 * image.devicePixelRatio();
}
inline int dotsPerMeter(const QImage& image) {
    return static_cast<int>(std::lround(dotsPerInch(image) / 0.0254));
}

/// A rectangle of a picture without copying a pixel: the result reads the original's memory and
/// keeps it alive. `rect` is in points with the origin at the picture's lower left, made whole in
/// device pixels outwards and cut to the picture. Null for an empty result.
QImage imagePart(const QImage& image, const VLRect& rect);

/// Writes the picture as a file of `fileType` (see ImageEncoding.h). A leading "~" stands for the
/// home directory, and missing folders are created: a picture must not be lost because its folder
/// was removed meanwhile. The file appears whole or not at all, an older one of that name is then
/// replaced. Returns why it was not written, and logs it, unless path or image was missing.
VLCaptureError saveToFile(const QImage& image, const std::string& path, int fileType);
/// The same for a picture that is encoded already.
VLCaptureError saveToFile(const QByteArray& bytes, const std::string& path);

/// The picture with one pixel to a point, at the same size in points (rounded to whole pixels, at
/// least one). Null for one that is not of high resolution, or if memory runs out.
QImage convert2Xto1XImage(const QImage& image);

/// A black rounded rectangle on clear ground, for use as a mask. `size` and `cornerRadius` are in
/// points, the radius at most half of the shorter side. Null for an empty size.
QImage generateImageWithSize(const VLSize& size, double cornerRadius, double devicePixelRatio = 1);

}  // namespace vorla

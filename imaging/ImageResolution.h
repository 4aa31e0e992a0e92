#pragma once

#include <QImage>
#include <cmath>

namespace vorla {

/// The resolution that a file tells of: a point is 1/72 inch, so a picture of a screen at twice the
/// pixels has 144 dots per inch and opens at its natural size elsewhere.
inline double dotsPerInch(const QImage& image) {
    return 72.0 * image.devicePixelRatio();
}
inline int dotsPerMeter(const QImage& image) {
    return static_cast<int>(std::lround(dotsPerInch(image) / 0.0254));
}

}  // namespace vorla

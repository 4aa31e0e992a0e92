#pragma once

#include <QByteArray>
#include <QImage>

namespace vorla {

/// A lossless JP2 file: RGB, or RGB and straight alpha, 8 bits. Empty on failure. Throws
/// std::bad_alloc.
QByteArray encodedJpeg2000(const QImage& image);

}  // namespace vorla

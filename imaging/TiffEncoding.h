#pragma once

#include <QByteArray>
#include <QImage>

namespace vorla {

/// A TIFF file: RGB, or RGBA with straight alpha, 8 bits, LZW with horizontal differencing, which
/// every reader understands. Empty on failure. Throws std::bad_alloc.
QByteArray encodedTiff(const QImage& image);

}  // namespace vorla

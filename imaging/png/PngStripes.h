#pragma once

#include <QByteArray>

#include "imaging/png/PngRows.h"

namespace vorla {

/// Appends the pixels of a picture to a PNG file as IDAT chunks, compressed by igzip in stripes on
/// all processors: each stripe may repeat bytes of the 32 KiB before it and ends on a byte boundary
/// (RFC 1951), so stripes are simply joined. False when memory runs out.
bool appendStripes(const PngLayout& layout, QByteArray& out);

}  // namespace vorla

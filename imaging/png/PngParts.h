#pragma once

#include <QByteArray>

#include "imaging/png/PngEncoder.h"
#include "imaging/png/PngRows.h"

namespace vorla {

/// Appends the pixels of a picture to a PNG file as one IDAT chunk, compressed by libdeflate: in
/// one piece for size, for speed in a few parts on all processors, of which the first goes to igzip
/// if the picture is flat. The number of processors changes nothing about the file. False, with
/// nothing appended, when memory runs out.
bool appendParts(const PngLayout& layout, PngEncoder::Goal goal, QByteArray& out);

}  // namespace vorla

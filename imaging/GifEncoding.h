#pragma once

#include <QByteArray>
#include <QImage>

namespace vorla {

/// A GIF file. Up to 256 colours (255 beside transparent pixels) are kept exactly; of more, the
/// best are chosen and the rest dithered (error diffusion after Floyd and Steinberg, 1976). Pixels
/// with an alpha below 128 become transparent, others opaque. Empty on failure, so for sides above
/// 65535. Throws std::bad_alloc.
QByteArray encodedGif(const QImage& image);

}  // namespace vorla

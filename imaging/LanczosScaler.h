#pragma once

#include <QImage>
#include <QSize>

namespace vorla {

/// The picture scaled down to `size` pixels by a separable Lanczos filter of three lobes (C.
/// Duchon, "Lanczos filtering in one and two dimensions", 1979), widened by the scale so that fine
/// detail averages out instead of aliasing; borders repeat. Alpha is filtered premultiplied, so
/// that clear pixels lend no colour to their neighbours. The result has device pixel ratio 1 and is
/// RGB32, or ARGB32_Premultiplied if the picture has alpha.
///
/// Works with the threads of the global queue as PngEncoder does. Null if either is empty or memory
/// runs out.
QImage lanczosScaled(const QImage& image, QSize size);

}  // namespace vorla

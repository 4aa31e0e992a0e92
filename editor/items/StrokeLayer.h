#pragma once

#include <QImage>
#include <functional>
#include <memory>

#include "editor/items/CurvePath.h"
#include "editor/items/StrokeMask.h"
#include "platform/base/geometry.h"

class QPainter;

namespace vorla {

/// A stroke along a growing path, kept at the resolution of the device on which it is shown.
///
/// What was drawn once is not stroked again: a longer path adds its new part, and a move by whole
/// device pixels, as every move by the pointer is, takes the pixels along. A stroke of one colour
/// has that colour everywhere, also where it crosses itself and if the colour is translucent.
class StrokeLayer {
 public:
    /// Writes the premultiplied colours that the stroke has in a rectangle of the device, row by
    /// row.
    using Ink = std::function<void(const QRect& devicePixels, QRgb* colors)>;

    /// Draws the part of the stroke that lies in `dirtyRect` (the painter's coordinates). `origin`
    /// is the place of the path's zero point. The painter may scale, flip and move, but not turn.
    void draw(QPainter& painter, const VLRect& dirtyRect, const CurvePath& path, VLPoint origin,
              double width, const Ink& ink);

    /// Frees the memory; the next drawing strokes the path anew.
    void clear() { mask_.reset(); }

    /// The ink of one colour.
    static Ink solid(const QColor& color);

 private:
    /// How the path's coordinates become pixels of the mask.
    struct Grid {
        double scaleX = 1.0;
        double scaleY = 1.0;
        VLPoint phase;
        [[nodiscard]] bool isLike(const Grid& other) const;
    };
    void update(const CurvePath& path, const Grid& grid, double width);

    Grid grid_;
    double width_ = 0.0;
    size_t drawnSegments_ = 0;
    std::unique_ptr<StrokeMask> mask_;
};

}  // namespace vorla

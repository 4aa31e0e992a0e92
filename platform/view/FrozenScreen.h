#pragma once

#include <QColor>
#include <QImage>
#include <QRegion>

#include "platform/base/geometry.h"

class QPainter;

namespace vorla {

/// The picture that a session freezes one screen at, taken before anything of ours is shown. A
/// value: copies share the pixels.
class FrozenScreen {
 public:
    FrozenScreen() = default;
    /// `image` is the whole screen, opaque, with the screen's scale as its device pixel ratio; null
    /// when it could not be had.
    explicit FrozenScreen(QImage image) : image_(std::move(image)) {}

    [[nodiscard]] bool isNull() const { return image_.isNull(); }
    [[nodiscard]] const QImage& image() const { return image_; }
    [[nodiscard]] double scale() const { return image_.devicePixelRatio(); }
    /// In points, which need not be whole.
    [[nodiscard]] VLSize size() const;

    /// Draws device pixels of the screen (y downward, from its upper left) at their place, blended
    /// with `dim` unless that is no colour. The painter must map those very coordinates. Where it
    /// paints into memory of the picture's own format, rows are copied into that, several times as
    /// fast as by drawing.
    void draw(QPainter& painter, const QRegion& devicePixels, const QColor& dim = {}) const;

 private:
    QImage image_;
};

}  // namespace vorla

#pragma once

#include <QColor>
#include <QImage>
#include <QRegion>
#include <memory>

#include "platform/base/ArrivingRows.h"
#include "platform/base/geometry.h"

class QPainter;

namespace vorla {

/// The picture that a session freezes one screen at, taken before anything of ours is shown. A
/// value: copies share the pixels.
///
/// The last rows may still be on their way while the first are drawn; what reads pixels waits for
/// those it needs.
class FrozenScreen {
 public:
    FrozenScreen() = default;
    /// `image` is the whole screen, opaque, with the screen's scale as its device pixel ratio; null
    /// when it could not be had.
    explicit FrozenScreen(QImage image, std::shared_ptr<ArrivingRows> rows = nullptr)
        : image_(std::move(image)), rows_(std::move(rows)) {}

    [[nodiscard]] bool isNull() const { return image_.isNull(); }
    /// All of it.
    [[nodiscard]] const QImage& image() const { return imageDownTo(image_.height()); }
    /// The same, of which no row from `end` on may be read yet.
    [[nodiscard]] const QImage& imageDownTo(int end) const {
        if (rows_) rows_->await(end);
        return image_;
    }
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
    std::shared_ptr<ArrivingRows> rows_;
};

}  // namespace vorla

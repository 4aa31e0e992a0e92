#pragma once

#include <QImage>
#include <memory>
#include <mutex>

#include "platform/base/geometry.h"

namespace vorla {

/// What a mosaic shows instead of a picture: squares of one colour each.
///
/// The picture's pixels are divided into squares of `kBlockSide`, laid so that the middle of one of
/// them is the picture's middle (half a pixel is rounded down). A square has the average colour of
/// those of its pixels that lie in the picture. The averages are worked out once, on the background
/// queue when that was asked for; who needs them earlier works them out in its place. Any thread.
class MosaicPicture : public std::enable_shared_from_this<MosaicPicture> {
 public:
    static constexpr int kBlockSide = 20;

    /// Null for a null image.
    static std::shared_ptr<MosaicPicture> create(const QImage& image);

    /// Has the averages worked out on the background queue. Returns at once.
    void prepare();

    /// Size of the picture in points.
    [[nodiscard]] VLSize size() const { return size_; }
    [[nodiscard]] double pixelsPerPoint() const { return pixelsPerPoint_; }

    /// Colours of the picture's pixels, premultiplied, for `count` places along a row. Places are
    /// pixels of the picture, y downward from its top; those outside come out clear.
    void colorsOfRow(double y, const double* xs, int count, QRgb* colors);

 private:
    explicit MosaicPicture(const QImage& image);
    const QImage& blocks();

    VLSize size_;
    QSize pixels_;
    double pixelsPerPoint_ = 1.0;
    /// Where the first square begins: at or before the picture's first pixel.
    QPoint first_;
    std::once_flag averaged_;
    QImage source_;
    QImage blocks_;
};

}  // namespace vorla

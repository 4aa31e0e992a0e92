#pragma once

#include <QImage>
#include <QRegion>
#include <functional>
#include <vector>

class QPainter;

namespace vorla {

/// A transparent picture as large as a screen, most of which is empty.
///
/// It is kept in upright strips whose memory comes into being where something is painted, and it
/// knows which blocks have been painted at all, so that blending it costs what is in it. All
/// coordinates are its own pixels, y downward.
class SparsePicture {
 public:
    using Draw = std::function<void(QPainter& painter)>;

    /// Empties the picture.
    void setSize(QSize pixels);
    [[nodiscard]] QSize size() const { return size_; }

    /// Makes a region transparent.
    void erase(const QRegion& region);
    /// Paints over what is there, inside the region only. `draw` runs once for each strip and must
    /// paint the same each time.
    void paint(const QRegion& region, const Draw& draw);
    /// Blends the region's part onto a painter that has this picture's pixels as its units and is
    /// allowed to paint there. The result for a pixel does not depend on the region.
    void drawTo(QPainter& painter, const QRegion& region) const;

 private:
    struct Strip {
        QImage image;
        /// Whether anything was ever painted in each block of rows.
        std::vector<bool> painted;
    };

    [[nodiscard]] bool provide(Strip& strip) const;

    QSize size_;
    std::vector<Strip> strips_;
};

}  // namespace vorla

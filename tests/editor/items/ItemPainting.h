#pragma once

#include <QImage>
#include <QPainter>

#include "editor/items/VLEditItem.h"

namespace vorla::test {

/// A canvas of `size` points over a plain ground, as an edit view paints it.
class Sheet {
 public:
    Sheet(QSize size, double scale, QColor ground = Qt::white)
        : size_(size), picture(size * scale, QImage::Format_RGB32) {
        picture.setDevicePixelRatio(scale);
        picture.fill(ground);
    }

    void draw(VLEditItem& item, const VLRect& dirty, bool withBorder = false) {
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(0, size_.height());
        painter.scale(1, -1);
        painter.setClipRect(QRectF(dirty.x, dirty.y, dirty.width, dirty.height));
        item.drawGraph(painter, dirty);
        if (withBorder) item.drawActiveBorder(painter);
    }
    void draw(VLEditItem& item) {
        draw(item, {0, 0, static_cast<double>(size_.width()), static_cast<double>(size_.height())});
    }

 private:
    QSize size_;

 public:
    QImage picture;
};

/// The largest difference in any channel of any pixel; 255 for different sizes.
inline int largestDifference(const QImage& a, const QImage& b) {
    if (a.size() != b.size()) return 255;
    int most = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            most = std::max({most, std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)),
                             std::abs(qBlue(p) - qBlue(q))});
        }
    return most;
}

}  // namespace vorla::test

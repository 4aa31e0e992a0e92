#include "examples/demo-desktop/ViewerWindow.h"

#include <QPainter>
#include <QPainterPath>

#include "examples/demo-desktop/landscape.h"

namespace vorla::demo {
namespace {

constexpr QRectF kFrame(1006, 118, 800, 604);
constexpr double kBar = 44;
constexpr double kStrip = 92;
constexpr QSizeF kThumbnail(96, 64);

QSize pixels(const QSizeF& size) {
    return (size * DemoWindow::unit()).toSize();
}

}  // namespace

ViewerWindow::ViewerWindow() : DemoWindow("Lake at first light.jpg", kFrame) {
    picture_ =
        paintLandscape(Landscape::Lake, pixels({kFrame.width(), kFrame.height() - kBar - kStrip}));
    for (const Landscape kind :
         {Landscape::Lake, Landscape::Dusk, Landscape::Meadow, Landscape::Snow})
        album_.push_back(paintLandscape(kind, pixels(kThumbnail)));
}

void ViewerWindow::drawContents(QPainter& painter, const QSizeF& size) {
    painter.fillRect(QRectF(QPointF(), size), QColor(30, 31, 36));
    painter.setFont(sans(13, QFont::DemiBold));
    painter.setPen(QColor(232, 234, 240));
    painter.drawText(QRectF(20, 0, 400, kBar), Qt::AlignVCenter, "Lake at first light");
    painter.setFont(sans(12));
    painter.setPen(QColor(148, 152, 164));
    painter.drawText(QRectF(0, 0, size.width() - 20, kBar), Qt::AlignVCenter | Qt::AlignRight,
                     "1 of 4    ·    6000 × 3510    ·    100 %");

    const QRectF picture(0, kBar, size.width(), size.height() - kBar - kStrip);
    painter.drawImage(picture, picture_);
    drawStrip(painter, QRectF(0, picture.bottom(), size.width(), kStrip));
}

void ViewerWindow::drawStrip(QPainter& painter, const QRectF& strip) {
    constexpr double kGap = 12;
    const auto count = static_cast<double>(album_.size());
    double x = strip.center().x() - (count * kThumbnail.width() + (count - 1) * kGap) / 2;
    for (const QImage& image : album_) {
        const QRectF place(QPointF(x, strip.center().y() - kThumbnail.height() / 2), kThumbnail);
        QPainterPath outline;
        outline.addRoundedRect(place, 5, 5);
        painter.save();
        painter.setClipPath(outline);
        painter.drawImage(place, image);
        painter.restore();
        if (&image == &album_.front()) {
            painter.setPen(QPen(QColor(110, 168, 255), 2));
            painter.setBrush(Qt::NoBrush);
            painter.drawRoundedRect(place.adjusted(-3, -3, 3, 3), 7, 7);
        }
        x += kThumbnail.width() + kGap;
    }
}

}  // namespace vorla::demo

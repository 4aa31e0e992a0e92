#include "HostIcon.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <functional>

namespace {

/// The frame of a selection: three corners, and the pointer that drags the fourth.
void paintGlyph(QPainter& painter, int size, double margin, const QColor& color) {
    const double line = std::max(2.0, std::round(size / 10.0));
    const double inset = size < 20 ? std::floor(size * margin) : std::round(size * margin);
    const double far = size - inset;
    const double arm = std::floor((far - inset) * 0.38);
    const QRectF bars[] = {
        {inset, inset, arm, line},      {inset, inset + line, line, arm - line},
        {far - arm, inset, arm, line},  {far - line, inset + line, line, arm - line},
        {inset, far - line, arm, line}, {inset, far - arm, line, arm - line}};
    for (const QRectF& bar : bars) painter.fillRect(bar, color);
    const double tip = std::round(size * 0.44);
    const double length = far + std::round(size * 0.04) - tip;
    const QPointF points[] = {{tip, tip},
                              {tip + length, tip + length * 0.40},
                              {tip + length * 0.56, tip + length * 0.56},
                              {tip + length * 0.40, tip + length}};
    QPainterPath arrow(points[0]);
    for (const QPointF& point : {points[1], points[2], points[3]}) arrow.lineTo(point);
    arrow.closeSubpath();
    painter.fillPath(arrow, color);
}

void paintBadge(QPainter& painter, int size) {
    QLinearGradient gradient(0, 0, 0, size);
    gradient.setColorAt(0, QColor(0x3b, 0x8e, 0xf3));
    gradient.setColorAt(1, QColor(0x1b, 0x5f, 0xcc));
    painter.setPen(Qt::NoPen);
    painter.setBrush(gradient);
    const double radius = size * 0.22;
    painter.drawRoundedRect(QRectF(0, 0, size, size), radius, radius);
    paintGlyph(painter, size, 0.19, Qt::white);
}

/// Paints at just the size that is asked for; nothing is scaled.
class PaintedIcon : public QIconEngine {
 public:
    explicit PaintedIcon(std::function<void(QPainter& painter, int size, QIcon::Mode mode)> draw)
        : draw_(std::move(draw)) {}

    [[nodiscard]] QIconEngine* clone() const override { return new PaintedIcon(*this); }

    QList<QSize> availableSizes(QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
        return {{16, 16}, {22, 22}, {24, 24}, {32, 32}, {48, 48}, {64, 64}, {128, 128}};
    }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode,
               QIcon::State state) override {
        const double scale = painter->device()->devicePixelRatioF();
        const QPixmap drawn = pixmap(rect.size() * scale, mode, state);
        QRectF place(QPointF(), QSizeF(drawn.size()) / scale);
        place.moveCenter(QRectF(rect).center());
        painter->drawPixmap(QRectF(place.topLeft().toPoint(), place.size()), drawn,
                            QRectF(drawn.rect()));
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State /*state*/) override {
        const int side = std::min(size.width(), size.height());
        QPixmap pixmap(side, side);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        draw_(painter, side, mode);
        return pixmap;
    }

 private:
    std::function<void(QPainter&, int, QIcon::Mode)> draw_;
};

}  // namespace

QIcon hostIcon() {
    return QIcon(new PaintedIcon(
        [](QPainter& painter, int size, QIcon::Mode /*mode*/) { paintBadge(painter, size); }));
}

QIcon captureGlyph(QPalette::ColorRole normal, QPalette::ColorRole active) {
    return QIcon(new PaintedIcon([=](QPainter& painter, int size, QIcon::Mode mode) {
        const bool isActive = mode == QIcon::Active || mode == QIcon::Selected;
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        // Asked for each time: the palette may change while the program runs.
        const QPalette palette = QGuiApplication::palette();
        paintGlyph(painter, size, 0.12, palette.color(group, isActive ? active : normal));
    }));
}

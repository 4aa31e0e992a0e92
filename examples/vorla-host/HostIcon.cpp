#include "HostIcon.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

namespace {

constexpr int sizes[] = {16, 18, 20, 22, 24, 28, 32, 36, 40, 44, 48, 64, 96, 128, 256};

/// The frame of a selection: three corners, and the pointer that drags the fourth.
void paintGlyph(QPainter& painter, int size, double margin, const QColor& color) {
    const double line = std::max(2.0, std::round(size / 10.0));
    const double inset = std::round(size * margin);
    const double arm = std::round(size * 0.25);
    const double far = size - inset;
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

QPixmap emptyPixmap(int size) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    return pixmap;
}

QPixmap badge(int size) {
    QPixmap pixmap = emptyPixmap(size);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient gradient(0, 0, 0, size);
    gradient.setColorAt(0, QColor(0x3b, 0x8e, 0xf3));
    gradient.setColorAt(1, QColor(0x1b, 0x5f, 0xcc));
    painter.setPen(Qt::NoPen);
    painter.setBrush(gradient);
    const double radius = size * 0.22;
    painter.drawRoundedRect(QRectF(0, 0, size, size), radius, radius);
    paintGlyph(painter, size, 0.19, Qt::white);
    return pixmap;
}

QPixmap plain(int size, const QColor& color) {
    QPixmap pixmap = emptyPixmap(size);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    paintGlyph(painter, size, 0.08, color);
    return pixmap;
}

}  // namespace

QIcon hostIcon() {
    QIcon icon;
    for (const int size : sizes) icon.addPixmap(badge(size));
    return icon;
}

QIcon captureGlyph(const QColor& color) {
    QIcon icon;
    for (const int size : sizes)
        if (size <= 64) icon.addPixmap(plain(size, color));
    return icon;
}

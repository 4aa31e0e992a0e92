#include "editor/items/tangentArc.h"

#include <cmath>

void vorla::addArcToPoint(QPainterPath& path, VLPoint corner, VLPoint next, double radius) {
    const QPointF start = path.currentPosition();
    const VLPoint back{start.x() - corner.x, start.y() - corner.y};
    const VLPoint ahead = next - corner;
    const double cross = back.x * ahead.y - back.y * ahead.x;
    if (radius <= 0.0 || std::abs(cross) < 1e-12) {
        path.lineTo(corner.x, corner.y);
        return;
    }
    const double angle = std::abs(std::atan2(cross, back.x * ahead.x + back.y * ahead.y));
    const double backLength = std::hypot(back.x, back.y);
    const double aheadLength = std::hypot(ahead.x, ahead.y);
    const double distance = radius / std::tan(angle / 2.0);
    // How far from the touching point towards the corner the control point of a cubic lies that
    // stands in for an arc.
    const double handle = 4.0 / 3.0 * std::tan((M_PI - angle) / 4.0) * radius;
    const auto on = [corner](VLPoint direction, double length, double at) {
        return QPointF(corner.x + direction.x / length * at, corner.y + direction.y / length * at);
    };
    path.lineTo(on(back, backLength, distance));
    path.cubicTo(on(back, backLength, distance - handle), on(ahead, aheadLength, distance - handle),
                 on(ahead, aheadLength, distance));
}

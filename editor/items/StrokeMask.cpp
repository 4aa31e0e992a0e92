#include "editor/items/StrokeMask.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace vorla {
namespace {

static_assert(StrokeMask::kTileSide == 1 << 5);

/// Where a row of pixel middles passes through something convex; empty when `low > high`.
struct Interval {
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();

    void include(const Interval& other) {
        low = std::min(low, other.low);
        high = std::max(high, other.high);
    }
    void limit(const Interval& other) {
        low = std::max(low, other.low);
        high = std::min(high, other.high);
    }
};

/// All points within a distance of a straight line between two ends.
class Capsule {
 public:
    Capsule(VLPoint from, VLPoint to) : from_(from), to_(to), along_(to - from) {
        length_ = std::hypot(along_.x, along_.y);
        if (length_ > 0) along_ = {along_.x / length_, along_.y / length_};
    }

    [[nodiscard]] Interval row(double y, double distance) const {
        Interval all = circle(from_, y, distance);
        if (length_ > 0) {
            all.include(circle(to_, y, distance));
            all.include(body(y, distance));
        }
        return all;
    }

    [[nodiscard]] double distance(double x, double y) const {
        const VLPoint offset{x - from_.x, y - from_.y};
        const double t = std::clamp(offset.x * along_.x + offset.y * along_.y, 0.0, length_);
        const double dx = offset.x - t * along_.x;
        const double dy = offset.y - t * along_.y;
        return std::sqrt(dx * dx + dy * dy);
    }

 private:
    static Interval circle(VLPoint center, double y, double radius) {
        const double dy = y - center.y;
        const double square = radius * radius - dy * dy;
        if (square < 0) return {};
        const double half = std::sqrt(square);
        return {center.x - half, center.x + half};
    }

    /// The rectangle between the ends: where the way along the line is between 0 and its length
    /// and the way across it within the distance.
    [[nodiscard]] Interval body(double y, double distance) const {
        const double dy = y - from_.y;
        constexpr double infinity = std::numeric_limits<double>::infinity();
        Interval inside{-infinity, infinity};
        inside.limit(solve(along_.x, dy * along_.y, 0, length_));
        inside.limit(solve(-along_.y, dy * along_.x, -distance, distance));
        if (inside.low > inside.high) return {};
        return {from_.x + inside.low, from_.x + inside.high};
    }

    /// The values x with low <= factor * x + constant <= high.
    static Interval solve(double factor, double constant, double low, double high) {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        if (std::abs(factor) < 1e-12) {
            if (constant >= low && constant <= high) return {-infinity, infinity};
            return {};
        }
        const double a = (low - constant) / factor;
        const double b = (high - constant) / factor;
        return {std::min(a, b), std::max(a, b)};
    }

    VLPoint from_;
    VLPoint to_;
    VLPoint along_;
    double length_;
};

// The first and the last pixel whose middle lies in the interval.
int firstPixel(double low) {
    return static_cast<int>(std::ceil(low - 0.5));
}
int lastPixel(double high) {
    return static_cast<int>(std::floor(high - 0.5));
}

// Further out than any screen; what lies beyond takes no memory.
constexpr double kFarthest = 1e5;

bool isDrawable(VLPoint point) {
    return std::abs(point.x) < kFarthest && std::abs(point.y) < kFarthest;
}

StrokeMask::Span span(const Interval& interval) {
    if (!(interval.low <= interval.high)) return {};
    return {firstPixel(interval.low), lastPixel(interval.high)};
}

}  // namespace

StrokeMask::Tile& StrokeMask::tile(int x, int y) {
    std::unique_ptr<Tile>& tile = tiles_[key(x, y)];
    if (!tile) tile = std::make_unique<Tile>();
    return *tile;
}

void StrokeMask::addLine(VLPoint from, VLPoint to) {
    if (!(radius_ > 0) || !isDrawable(from) || !isDrawable(to)) return;
    const Capsule capsule(from, to);
    const double outer = radius_ + 0.5;
    const double inner = radius_ - 0.5;
    const QRect pixels(QPoint(firstPixel(std::min(from.x, to.x) - outer),
                              firstPixel(std::min(from.y, to.y) - outer)),
                       QPoint(lastPixel(std::max(from.x, to.x) + outer),
                              lastPixel(std::max(from.y, to.y) + outer)));
    if (!pixels.isValid()) return;
    extent_ |= pixels;
    int rowOfTiles = tileOf(pixels.top()) - 1;
    for (int y = pixels.top(); y <= pixels.bottom(); ++y) {
        if (tileOf(y) != rowOfTiles) {
            rowOfTiles = tileOf(y);
            const int columns = tileOf(pixels.right()) - tileOf(pixels.left()) + 1;
            rowTiles_.assign(static_cast<size_t>(columns), nullptr);
        }
        Span touched = span(capsule.row(y + 0.5, outer));
        touched = {std::max(touched.first, pixels.left()), std::min(touched.last, pixels.right())};
        const Span whole = inner > 0 ? span(capsule.row(y + 0.5, inner)) : Span{};
        const auto coverage = [&](int x) {
            const double covered = outer - capsule.distance(x + 0.5, y + 0.5);
            return static_cast<uint8_t>(std::clamp(covered, 0.0, 1.0) * 255 + 0.5);
        };
        coverRow(y, tileOf(pixels.left()), touched, whole, coverage);
    }
}

template <typename Coverage>
void StrokeMask::coverRow(int y, int firstColumn, Span touched, Span whole,
                          const Coverage& coverage) {
    for (int x = touched.first; x <= touched.last;) {
        Tile*& under = rowTiles_[static_cast<size_t>(tileOf(x) - firstColumn)];
        if (!under) under = &tile(tileOf(x), tileOf(y));
        uint8_t* row = under->data() + (y & (kTileSide - 1)) * kTileSide;
        const int inTile = x & (kTileSide - 1);
        if (x >= whole.first && x <= whole.last) {
            const int last = std::min({whole.last, touched.last, x - inTile + kTileSide - 1});
            std::memset(row + inTile, 255, static_cast<size_t>(last - x + 1));
            x = last + 1;
        } else {
            row[inTile] = std::max(row[inTile], coverage(x));
            ++x;
        }
    }
}

}  // namespace vorla

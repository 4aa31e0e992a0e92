#pragma once

#include <QPoint>
#include <QRect>
#include <array>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "platform/base/geometry.h"

namespace vorla {

/// How much of each pixel a line with round ends and joints covers, 0 to 255.
///
/// A pixel's coverage follows from the distance between its middle and the line's middle line
/// alone: whole up to half a pixel inside the edge, none from half a pixel outside of it, linear
/// between. So the pieces of a line may be added one by one and in any order; joints and crossings
/// come out as if it had been added at once, and adding a piece costs the same however much there
/// is already. Coordinates are pixels, y downward. Memory is taken in tiles along the line only.
class StrokeMask {
 public:
    static constexpr int kTileSide = 32;
    using Tile = std::array<uint8_t, static_cast<size_t>(kTileSide) * kTileSide>;

    /// Pixels of a row, both ends included; none when `first > last`.
    struct Span {
        int first = 0;
        int last = -1;
    };

    /// `radius` is half of the line's width; one of zero or less covers nothing.
    explicit StrokeMask(double radius) : radius_(radius) {}

    /// Adds a straight piece; a dot when both ends are the same.
    void addLine(VLPoint from, VLPoint to);

    /// Calls `visit(topLeft, tile)` for each tile that has something in `pixels`.
    template <typename Visit>
    void forEachTile(const QRect& pixels, Visit&& visit) const {
        const QRect part = pixels & extent_;
        if (part.isEmpty()) return;
        for (int y = tileOf(part.top()); y <= tileOf(part.bottom()); ++y)
            for (int x = tileOf(part.left()); x <= tileOf(part.right()); ++x)
                if (const auto found = tiles_.find(key(x, y)); found != tiles_.end())
                    visit(QPoint(x, y) * kTileSide, *found->second);
    }

    [[nodiscard]] size_t tileCount() const { return tiles_.size(); }

 private:
    static int tileOf(int pixel) { return pixel >> 5; }  // rounds down, also below zero
    static uint64_t key(int x, int y) {
        return static_cast<uint64_t>(static_cast<uint32_t>(y)) << 32 | static_cast<uint32_t>(x);
    }
    Tile& tile(int x, int y);
    template <typename Coverage>
    void coverRow(int y, int firstColumn, Span touched, Span whole, const Coverage& coverage);

    double radius_;
    QRect extent_;
    std::unordered_map<uint64_t, std::unique_ptr<Tile>> tiles_;
    /// The tiles under the row that is being covered.
    std::vector<Tile*> rowTiles_;
};

}  // namespace vorla

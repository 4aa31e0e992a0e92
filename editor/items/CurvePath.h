#pragma once

#include <vector>

#include "platform/base/geometry.h"

namespace vorla {

/// A free-hand line: cubic curves, each of which begins where the one before ended.
class CurvePath {
 public:
    struct Segment {
        VLPoint start;
        VLPoint control1;
        VLPoint control2;
        VLPoint end;

        /// Around the end points and the control points.
        [[nodiscard]] VLRect bounds() const;
        /// Calls `line(from, to)` for straight pieces that stay within `tolerance` of the curve;
        /// once, with equal points, for a curve of no length.
        template <typename Line>
        void flatten(double tolerance, Line&& line) const {
            const int pieces = pieceCount(tolerance);
            VLPoint from = start;
            for (int i = 1; i <= pieces; ++i) {
                const VLPoint to = i == pieces ? end : at(static_cast<double>(i) / pieces);
                line(from, to);
                from = to;
            }
        }

     private:
        [[nodiscard]] VLPoint at(double t) const;
        [[nodiscard]] int pieceCount(double tolerance) const;
    };

    void moveTo(VLPoint point) { start_ = point; }
    void curveTo(VLPoint control1, VLPoint control2, VLPoint end);

    [[nodiscard]] bool isEmpty() const { return segments_.empty(); }
    [[nodiscard]] const std::vector<Segment>& segments() const { return segments_; }
    /// Around all end and control points; the zero rectangle for an empty path.
    [[nodiscard]] VLRect bounds() const { return bounds_; }
    /// Whether `point` lies at most `distance` from the line: inside its stroke of twice that width
    /// with round ends and joints.
    [[nodiscard]] bool isNear(VLPoint point, double distance) const;

 private:
    VLPoint start_;
    VLRect bounds_;
    std::vector<Segment> segments_;
};

}  // namespace vorla

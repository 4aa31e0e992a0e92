#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

/// A point. Doubles, origin at the lower left, y upward. Which space (screen, view) a point lives
/// in is said where it is handed over; points of different screens are never mixed.
struct VLPoint {
    double x = 0.0;
    double y = 0.0;

    friend bool operator==(const VLPoint&, const VLPoint&) = default;
    friend VLPoint operator+(VLPoint a, VLPoint b) { return {a.x + b.x, a.y + b.y}; }
    friend VLPoint operator-(VLPoint a, VLPoint b) { return {a.x - b.x, a.y - b.y}; }
};

/// A size in points. Widths and heights are not normalised: a negative one is kept as it is.
struct VLSize {
    double width = 0.0;
    double height = 0.0;

    [[nodiscard]] bool isEmpty() const { return !(width > 0.0 && height > 0.0); }
    friend bool operator==(const VLSize&, const VLSize&) = default;
};

/// A rectangle: origin at its lower left corner, y upward.
struct VLRect {
    double x = 0.0;
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;

    static VLRect make(VLPoint origin, VLSize size) {
        return {origin.x, origin.y, size.width, size.height};
    }

    /// The rectangle that stands for "no rectangle"; distinct from the zero rectangle.
    static VLRect null() {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        return {infinity, infinity, 0.0, 0.0};
    }

    [[nodiscard]] VLPoint origin() const { return {x, y}; }
    [[nodiscard]] VLSize size() const { return {width, height}; }
    [[nodiscard]] double minX() const { return x; }
    [[nodiscard]] double minY() const { return y; }
    [[nodiscard]] double midX() const { return x + width / 2.0; }
    [[nodiscard]] double midY() const { return y + height / 2.0; }
    [[nodiscard]] double maxX() const { return x + width; }
    [[nodiscard]] double maxY() const { return y + height; }

    /// All four numbers are zero.
    [[nodiscard]] bool isZero() const { return *this == VLRect{}; }
    [[nodiscard]] bool isNull() const { return std::isinf(x) || std::isinf(y); }
    /// No area: null, or a width or height that is not above zero.
    [[nodiscard]] bool isEmpty() const { return isNull() || size().isEmpty(); }

    /// The low edges belong to the rectangle, the high ones do not.
    [[nodiscard]] bool containsPoint(VLPoint p) const {
        return p.x >= x && p.y >= y && p.x < maxX() && p.y < maxY();
    }

    /// Whether `other`, if it is not empty, lies wholly inside (shared edges count as inside).
    [[nodiscard]] bool containsRect(const VLRect& other) const {
        return !other.isEmpty() && other.x >= x && other.y >= y && other.maxX() <= maxX() &&
               other.maxY() <= maxY();
    }

    /// The common part; the zero rectangle when there is none.
    [[nodiscard]] VLRect intersection(const VLRect& other) const {
        if (isEmpty() || other.isEmpty()) return {};
        const double left = std::max(x, other.x);
        const double bottom = std::max(y, other.y);
        const double right = std::min(maxX(), other.maxX());
        const double top = std::min(maxY(), other.maxY());
        if (right <= left || top <= bottom) return {};
        return {left, bottom, right - left, top - bottom};
    }

    /// The smallest rectangle around both; an empty one adds nothing.
    [[nodiscard]] VLRect united(const VLRect& other) const {
        if (isEmpty()) return other;
        if (other.isEmpty()) return *this;
        const double left = std::min(x, other.x);
        const double bottom = std::min(y, other.y);
        return {left, bottom, std::max(maxX(), other.maxX()) - left,
                std::max(maxY(), other.maxY()) - bottom};
    }

    [[nodiscard]] VLRect offsetBy(double dx, double dy) const {
        return {x + dx, y + dy, width, height};
    }

    /// Moves each edge inwards by the amounts (outwards when negative).
    [[nodiscard]] VLRect insetBy(double dx, double dy) const {
        return {x + dx, y + dy, width - 2.0 * dx, height - 2.0 * dy};
    }

    /// The smallest rectangle with whole numbers that contains this one.
    [[nodiscard]] VLRect integral() const {
        if (isNull()) return *this;
        const double left = std::floor(x);
        const double bottom = std::floor(y);
        return {left, bottom, std::ceil(maxX()) - left, std::ceil(maxY()) - bottom};
    }

    /// The largest rectangle inside this one whose edges are whole multiples of 1/scale: all four
    /// edges are rounded inwards. An edge within a thousandth of a device pixel of a whole one
    /// counts as being there, so that rounding noise does not cost a pixel. Scale 1 aligns to
    /// points, a screen's scale to its device pixels. Never returns a negative size.
    [[nodiscard]] VLRect alignedInward(double scale = 1.0) const {
        if (isNull()) return *this;
        constexpr double tolerance = 1e-3;
        const auto up = [scale](double v) { return std::ceil(v * scale - tolerance) / scale; };
        const auto down = [scale](double v) { return std::floor(v * scale + tolerance) / scale; };
        const double left = up(x);
        const double bottom = up(y);
        return {left, bottom, std::max(0.0, down(maxX()) - left),
                std::max(0.0, down(maxY()) - bottom)};
    }

    friend bool operator==(const VLRect&, const VLRect&) = default;
};

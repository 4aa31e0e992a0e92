#pragma once

#include <cstdint>
#include <string_view>

namespace vorla::test {

/// What a test client paints, so that tests can tell which pixel of which window they see.
enum class TestPattern { Quadrants, Gradient, Checker };

/// By the name that the client's command line takes; Quadrants for an unknown one.
inline TestPattern testPatternNamed(std::string_view name) {
    if (name == "gradient") return TestPattern::Gradient;
    if (name == "checker") return TestPattern::Checker;
    return TestPattern::Quadrants;
}

/// Colour 0xRRGGBB of the pixel at (x, y), counted from the upper left of a window's client area.
/// Gradient makes every pixel of a 256 x 256 block differ, so that shifts by one are seen.
inline uint32_t testPatternPixel(TestPattern pattern, int x, int y, int width, int height) {
    switch (pattern) {
        case TestPattern::Gradient:
            return static_cast<uint32_t>((x & 255) << 16 | (y & 255) << 8 |
                                         ((x * 7 + y * 13) & 255));
        case TestPattern::Checker:
            return ((x / 8 + y / 8) & 1) != 0 ? 0xf0f0f0U : 0x101010U;
        case TestPattern::Quadrants:
            break;
    }
    const bool right = x >= width / 2;
    if (y < height / 2) return right ? 0x30c030U : 0xc03030U;
    return right ? 0xc0c030U : 0x3030c0U;
}

}  // namespace vorla::test

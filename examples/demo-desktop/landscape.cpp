#include "examples/demo-desktop/landscape.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace vorla::demo {
namespace {

struct Rgb {
    double r, g, b;
};

Rgb mix(const Rgb& a, const Rgb& b, double t) {
    t = std::clamp(t, 0.0, 1.0);
    return {a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t};
}

double smooth(double low, double high, double x) {
    const double t = std::clamp((x - low) / (high - low), 0.0, 1.0);
    return t * t * (3 - 2 * t);
}

double hash(int x, int y) {
    auto n = static_cast<uint32_t>(x) * 374761393u + static_cast<uint32_t>(y) * 668265263u;
    n = (n ^ (n >> 13)) * 1274126177u;
    return static_cast<double>((n ^ (n >> 16)) & 0xffff) / 65535.0;
}

double valueNoise(double x, double y) {
    const int column = static_cast<int>(std::floor(x));
    const int row = static_cast<int>(std::floor(y));
    const double u = smooth(0, 1, x - column);
    const double v = smooth(0, 1, y - row);
    const double top = std::lerp(hash(column, row), hash(column + 1, row), u);
    const double bottom = std::lerp(hash(column, row + 1), hash(column + 1, row + 1), u);
    return std::lerp(top, bottom, v);
}

/// Sum of `octaves` of noise, each of twice the frequency and half the strength; 0 to 1.
double fractalNoise(double x, double y, int octaves) {
    double sum = 0;
    double strength = 0.5;
    for (int octave = 0; octave < octaves; ++octave) {
        sum += strength * valueNoise(x, y);
        x = x * 2.03 + 17.1;
        y = y * 2.03 + 9.7;
        strength *= 0.5;
    }
    return sum;
}

struct Palette {
    Rgb zenith, horizon, sun, cloud, far, near, ground;
    double sunX;
    double cover;  // share of the sky under clouds
    int seed;
    bool water;
};

const Palette& paletteOf(Landscape kind) {
    static const std::array<Palette, 4> palettes = {{
        {{52, 98, 158},
         {250, 205, 160},
         {255, 238, 200},
         {255, 226, 204},
         {148, 158, 190},
         {28, 44, 58},
         {40, 58, 52},
         0.68,
         0.50,
         11,
         true},
        {{38, 30, 78},
         {246, 128, 92},
         {255, 214, 150},
         {236, 120, 132},
         {134, 92, 134},
         {30, 20, 44},
         {30, 22, 40},
         0.36,
         0.42,
         40,
         true},
        {{74, 138, 206},
         {206, 228, 240},
         {255, 250, 226},
         {255, 255, 255},
         {140, 176, 190},
         {52, 92, 66},
         {98, 140, 62},
         0.22,
         0.56,
         71,
         false},
        {{98, 128, 170},
         {226, 232, 240},
         {255, 250, 240},
         {246, 248, 252},
         {186, 200, 218},
         {92, 112, 140},
         {226, 234, 244},
         0.60,
         0.62,
         93,
         false},
    }};
    return palettes[static_cast<size_t>(kind)];
}

/// The scene in coordinates of its own: x to the right in units of the height, y down from 0 at the
/// top to 1.
class Scene {
 public:
    Scene(const Palette& palette, double aspect) : palette_(palette), aspect_(aspect) {}

    [[nodiscard]] Rgb at(double x, double y) const {
        const double shore = 0.70;
        if (y < shore) return aboveShore(x, y);
        if (!palette_.water) return meadow(x, y, shore);
        // The mirror image, drawn out and broken by ripples that grow towards the viewer.
        const double depth = (y - shore) / (1 - shore);
        const double ripple = (fractalNoise(x * 16 + 40, std::pow(depth, 0.6) * 90, 3) - 0.45) *
                              (0.01 + 0.07 * depth);
        const Rgb mirrored = aboveShore(x + ripple * 0.5, shore - (y - shore) * 0.92 + ripple);
        Rgb water = mix(mirrored, palette_.near, 0.16 + 0.34 * depth);
        const double glint = smooth(0.62, 0.80, fractalNoise(x * 30, depth * 160, 2)) *
                             std::exp(-std::pow((x / aspect_ - palette_.sunX) * 7, 2));
        return mix(water, palette_.sun, glint * 0.55);
    }

 private:
    [[nodiscard]] Rgb sky(double x, double y) const {
        Rgb colour = mix(palette_.zenith, palette_.horizon, std::pow(y / 0.62, 1.25));
        const double clouds = fractalNoise(x * 2.2 + palette_.seed, y * 7.5 + x * 0.7, 6);
        const double cloud = smooth(0.98 - palette_.cover, 1.16 - palette_.cover, clouds);
        colour = mix(colour, palette_.cloud, cloud * (0.35 + 0.4 * y));
        const double dx = x - palette_.sunX * aspect_;
        const double dy = y - 0.40;
        const double distance = std::sqrt(dx * dx + dy * dy);
        colour = mix(colour, palette_.sun, 0.55 * std::exp(-distance * 4.2));
        return mix(colour, {255, 252, 240}, smooth(0.040, 0.030, distance));
    }

    /// The ridge's height at x as a fraction down the picture; ridge 0 is the farthest.
    [[nodiscard]] double ridge(double x, int index) const {
        const double frequency = 1.3 + 0.75 * index;
        const double noise =
            fractalNoise(x * frequency + palette_.seed * 3.7 + index * 31, index * 7.3 + 0.5, 7);
        return 0.36 + 0.075 * index + (0.5 - noise) * (0.46 - 0.06 * index);
    }

    [[nodiscard]] Rgb aboveShore(double x, double y) const {
        constexpr int kRidges = 5;
        for (int index = kRidges - 1; index >= 0; --index) {
            const double top = ridge(x, index);
            if (y < top) continue;
            const double nearness = static_cast<double>(index) / (kRidges - 1);
            Rgb colour = mix(palette_.far, palette_.near, nearness);
            const double texture =
                fractalNoise(x * (26 + 22 * nearness), y * (34 + 22 * nearness) + index * 5, 5);
            colour = mix(colour, palette_.horizon, (texture - 0.42) * (0.55 - 0.25 * nearness));
            // Light from the sun's side on the slopes that face it, haze in the valleys.
            const double slope = (ridge(x + 0.004, index) - top) * 60;
            colour = mix(colour, palette_.sun, std::clamp(slope * 0.14, 0.0, 0.22));
            return mix(colour, palette_.horizon,
                       smooth(0.0, 0.22, y - top) * (0.52 - 0.36 * nearness));
        }
        return sky(x, std::max(0.0, y));
    }

    [[nodiscard]] Rgb meadow(double x, double y, double shore) const {
        const double depth = (y - shore) / (1 - shore);
        const double grass = fractalNoise(x * (60 - 34 * depth), y * (190 - 120 * depth), 5);
        const double swell = fractalNoise(x * 2.4, depth * 3 + palette_.seed, 3);
        Rgb colour = mix(palette_.near, palette_.ground, 0.25 + 0.75 * depth + (swell - 0.45));
        return mix(colour, palette_.sun, (grass - 0.40) * 0.5);
    }

    const Palette& palette_;
    double aspect_;
};

int toByte(double value) {
    return static_cast<int>(std::clamp(value + 0.5, 0.0, 255.0));
}

}  // namespace

QImage paintLandscape(Landscape kind, const QSize& size) {
    QImage image(size, QImage::Format_RGB32);
    const double height = size.height();
    const Scene scene(paletteOf(kind), size.width() / height);
    for (int row = 0; row < size.height(); ++row) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(row));
        for (int column = 0; column < size.width(); ++column) {
            const Rgb colour = scene.at(column / height, row / height);
            const double grain = (hash(column + 7919, row + 104729) - 0.5) * 5;
            line[column] =
                qRgb(toByte(colour.r + grain), toByte(colour.g + grain), toByte(colour.b + grain));
        }
    }
    return image;
}

}  // namespace vorla::demo

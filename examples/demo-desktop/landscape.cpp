#include "examples/demo-desktop/landscape.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <vector>

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

/// Gradient noise on the unit lattice, about -0.7 to 0.7 with mean 0.
double gradientNoise(double x, double y) {
    const int column = static_cast<int>(std::floor(x));
    const int row = static_cast<int>(std::floor(y));
    const double fx = x - column;
    const double fy = y - row;
    const auto corner = [&](int i, int j) {
        const double angle = 2 * std::numbers::pi * hash(column + i, row + j);
        return std::cos(angle) * (fx - i) + std::sin(angle) * (fy - j);
    };
    const double u = smooth(0, 1, fx);
    const double v = smooth(0, 1, fy);
    return std::lerp(std::lerp(corner(0, 0), corner(1, 0), u),
                     std::lerp(corner(0, 1), corner(1, 1), u), v);
}

/// Sum of `octaves` of noise, each of twice the frequency and half the strength; about 0 to 1, with
/// mean 0.5. Each octave is turned against the one before, so that the lattice does not show.
double fractalNoise(double x, double y, int octaves) {
    double sum = 0.5;
    double strength = 0.6;
    for (int octave = 0; octave < octaves; ++octave) {
        sum += strength * gradientNoise(x, y);
        const double turned = 1.62 * x - 1.21 * y + 17.1;
        y = 1.21 * x + 1.62 * y + 9.7;
        x = turned;
        strength *= 0.5;
    }
    return sum;
}

/// Noise with sharp crests, for mountains; 0 to 1.
double crestedNoise(double x, double y, int octaves) {
    double sum = 0;
    double strength = 0.5;
    double weight = 1;
    for (int octave = 0; octave < octaves; ++octave) {
        const double crest = std::pow(1 - std::min(1.0, std::abs(gradientNoise(x, y)) * 1.6), 2);
        sum += strength * weight * crest;
        weight = std::clamp(crest * 1.4, 0.0, 1.0);
        x = x * 2.07 + 17.1;
        y = y * 2.07 + 9.7;
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
    Scene(const Palette& palette, const QSize& size)
        : palette_(palette),
          pixel_(1.0 / size.height()),
          aspect_(static_cast<double>(size.width()) / size.height()) {
        // The silhouettes, from a little left of the picture to a little right of it, for the
        // ripples look sideways.
        const auto samples = static_cast<size_t>((aspect_ + 2 * kMargin) / pixel_) + 2;
        for (int index = 0; index < kRidges; ++index) {
            ridges_[static_cast<size_t>(index)].resize(samples);
            for (size_t i = 0; i < samples; ++i)
                ridges_[static_cast<size_t>(index)][i] =
                    silhouette(static_cast<double>(i) * pixel_ - kMargin, index);
        }
    }

    [[nodiscard]] Rgb at(double x, double y) const {
        if (y < kShore) return aboveShore(x, y);
        if (!palette_.water) return meadow(x, y);
        // The mirror image, drawn out and broken by ripples that grow towards the viewer.
        const double depth = (y - kShore) / (1 - kShore);
        const double ripple = (fractalNoise(x * 7 + 40, std::pow(depth, 0.55) * 60, 4) - 0.5) *
                              (0.012 + 0.05 * depth);
        const Rgb mirrored = aboveShore(x + ripple * 0.4, kShore - (y - kShore) * 1.25 + ripple);
        const Rgb water = mix(mirrored, palette_.near, 0.10 + 0.34 * depth);
        const double glint = smooth(0.60, 0.80, fractalNoise(x * 14, depth * 110, 2)) *
                             std::exp(-std::pow((x / aspect_ - palette_.sunX) * 8, 2));
        const double shoreline = std::exp(-(y - kShore) * 260);
        return mix(mix(water, palette_.sun, glint * 0.6), palette_.cloud, shoreline * 0.25);
    }

 private:
    static constexpr int kRidges = 5;
    static constexpr double kShore = 0.70;
    static constexpr double kMargin = 0.1;

    [[nodiscard]] Rgb sky(double x, double y) const {
        Rgb colour = mix(palette_.zenith, palette_.horizon, std::pow(y / 0.60, 1.1));
        const double warp = fractalNoise(x * 1.3 + palette_.seed, y * 4, 3);
        const double clouds = fractalNoise(x * 1.5 + palette_.seed + warp, y * 5.5 + warp * 1.6, 7);
        const double cloud = smooth(1.02 - palette_.cover, 1.42 - palette_.cover, clouds);
        colour = mix(colour, palette_.cloud, cloud * (0.45 + 0.5 * y));
        const double dx = x - palette_.sunX * aspect_;
        const double dy = y - 0.33;
        const double distance = std::sqrt(dx * dx + dy * dy);
        colour = mix(colour, palette_.sun, 0.75 * std::exp(-distance * 3.6));
        return mix(colour, {255, 252, 240}, smooth(0.030, 0.020, distance));
    }

    /// The height of a ridge's upper edge at x, as a fraction down the picture; ridge 0 is the
    /// farthest.
    [[nodiscard]] double silhouette(double x, int index) const {
        const double row = palette_.seed * 1.37 + index * 7.3 + 0.5;
        const double rough = crestedNoise(x * (1.1 + 0.55 * index) + index * 31, row, 7);
        const double even = fractalNoise(x * (0.7 + 0.5 * index) + index * 13, row + 3.1, 5);
        const double height = 0.60 * rough + 0.40 * even;
        return 0.46 + 0.058 * index + (0.42 - height) * (0.50 - 0.075 * index);
    }

    [[nodiscard]] double ridge(double x, int index) const {
        const std::vector<double>& samples = ridges_[static_cast<size_t>(index)];
        const double place = std::clamp((x + kMargin) / pixel_, 0.0, samples.size() - 2.0);
        const auto low = static_cast<size_t>(place);
        return std::lerp(samples[low], samples[low + 1], place - static_cast<double>(low));
    }

    [[nodiscard]] Rgb slope(double x, double y, double top, int index) const {
        const double nearness = static_cast<double>(index) / (kRidges - 1);
        Rgb colour = mix(palette_.far, palette_.near, std::pow(nearness, 0.8));
        // Folds run down from the crests: light on the side of the sun, shade on the other.
        const double frequency = 7 + 9 * nearness;
        const double below = y - top;
        const auto fold = [&](double dx) {
            return crestedNoise((x + dx) * frequency + below * 2.5,
                                y * frequency * 0.55 + index * 9, 5);
        };
        const double towardsSun = palette_.sunX > 0.5 ? 0.012 : -0.012;
        const double light = (fold(0) - fold(towardsSun)) * 1.5;
        colour = mix(colour, palette_.sun, std::clamp(light, 0.0, 0.30) * (1 - 0.5 * nearness));
        colour = mix(colour, {10, 14, 24}, std::clamp(-light, 0.0, 0.24));
        // Haze gathers in the valleys, thickest far away.
        return mix(colour, palette_.horizon, smooth(0.0, 0.20, below) * (0.62 - 0.50 * nearness));
    }

    [[nodiscard]] Rgb aboveShore(double x, double y) const {
        y = std::max(0.0, y);
        int first = kRidges - 1;
        const auto covers = [&](int index) { return (y - ridge(x, index)) / pixel_ + 0.5; };
        while (first >= 0 && covers(first) < 1) --first;
        Rgb colour = first < 0 ? sky(x, y) : slope(x, y, ridge(x, first), first);
        // Nearer ridges whose edge runs through this very pixel.
        for (int index = std::max(first, 0); index < kRidges; ++index) {
            const double share = covers(index);
            if (index != first && share > 0)
                colour = mix(colour, slope(x, y, ridge(x, index), index), share);
        }
        return colour;
    }

    [[nodiscard]] Rgb meadow(double x, double y) const {
        const double depth = (y - kShore) / (1 - kShore);
        const double scale = 1 / (0.12 + depth);
        const double grass = fractalNoise(x * 22 * scale, depth * 60 * scale, 5);
        const double swell = fractalNoise(x * 2.4, depth * 3 + palette_.seed, 3);
        const Rgb colour = mix(palette_.near, palette_.ground, 0.30 + 0.7 * depth + (swell - 0.5));
        return mix(mix(colour, palette_.sun, (grass - 0.45) * 0.5), palette_.near,
                   (0.5 - grass) * 0.6);
    }

    const Palette& palette_;
    double pixel_;
    double aspect_;
    std::array<std::vector<double>, kRidges> ridges_;
};

int toByte(double value) {
    return static_cast<int>(std::clamp(value + 0.5, 0.0, 255.0));
}

}  // namespace

QImage paintLandscape(Landscape kind, const QSize& size) {
    QImage image(size, QImage::Format_RGB32);
    const double height = size.height();
    const Scene scene(paletteOf(kind), size);
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

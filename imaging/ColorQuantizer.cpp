#include "imaging/ColorQuantizer.h"

#include <algorithm>
#include <array>

namespace vorla {
namespace {

constexpr int kBinBits = 5;
constexpr int kCacheBits = 6;

// One cell of the coarse cube that occurs: how often, and the sums of the true channel values.
struct Bin {
    uint64_t count = 0;
    std::array<uint64_t, 3> sums = {};
    [[nodiscard]] double mean(int channel) const {
        return static_cast<double>(sums[static_cast<size_t>(channel)]) / static_cast<double>(count);
    }
};

struct Box {
    size_t first;
    size_t end;
    int axis = 0;        // of the greatest variance
    double mean = 0;     // on that axis
    double spread = -1;  // count times variance on that axis; what splitting gains at most
};

std::vector<Bin> occurringBins(const QImage& image) {
    std::vector<Bin> bins(size_t{1} << 3 * kBinBits);
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = line[x];
            if (qAlpha(pixel) < 128) continue;
            const auto index = static_cast<size_t>(qRed(pixel) >> 3 << 10 |
                                                   qGreen(pixel) >> 3 << 5 | qBlue(pixel) >> 3);
            Bin& bin = bins[index];
            ++bin.count;
            bin.sums[0] += static_cast<uint64_t>(qRed(pixel));
            bin.sums[1] += static_cast<uint64_t>(qGreen(pixel));
            bin.sums[2] += static_cast<uint64_t>(qBlue(pixel));
        }
    }
    std::erase_if(bins, [](const Bin& bin) { return bin.count == 0; });
    return bins;
}

void measure(Box& box, const std::vector<Bin>& bins) {
    box.spread = -1;
    if (box.end - box.first < 2) return;
    for (int axis = 0; axis < 3; ++axis) {
        double count = 0, sum = 0, squares = 0;
        for (size_t i = box.first; i < box.end; ++i) {
            const auto weight = static_cast<double>(bins[i].count);
            const double value = bins[i].mean(axis);
            count += weight;
            sum += weight * value;
            squares += weight * value * value;
        }
        const double spread = squares - sum * sum / count;
        if (spread <= box.spread) continue;
        box.spread = spread;
        box.axis = axis;
        box.mean = sum / count;
    }
}

uint32_t colorOf(const Box& box, const std::vector<Bin>& bins) {
    Bin all;
    const Bin* dominant = &bins[box.first];
    for (size_t i = box.first; i < box.end; ++i) {
        all.count += bins[i].count;
        for (size_t c = 0; c < 3; ++c) all.sums[c] += bins[i].sums[c];
        if (bins[i].count > dominant->count) dominant = &bins[i];
    }
    const Bin& chosen = dominant->count * 2 > all.count ? *dominant : all;
    uint32_t color = 0;
    for (int c = 0; c < 3; ++c) color = color << 8 | static_cast<uint32_t>(chosen.mean(c) + 0.5);
    return color;
}

}  // namespace

ColorQuantizer::ColorQuantizer(const QImage& image, size_t maximum)
    : found_(size_t{1} << 3 * kCacheBits, -1) {
    std::vector<Bin> bins = occurringBins(image);
    if (bins.empty()) bins.push_back({1, {}});
    std::vector<Box> boxes = {{0, bins.size()}};
    measure(boxes[0], bins);
    const auto lessSpread = [](const Box& a, const Box& b) { return a.spread < b.spread; };
    while (boxes.size() < maximum) {
        Box& box = *std::max_element(boxes.begin(), boxes.end(), lessSpread);
        if (box.spread <= 0) break;
        const auto begin = bins.begin() + static_cast<ptrdiff_t>(box.first);
        const auto middle =
            std::partition(begin, bins.begin() + static_cast<ptrdiff_t>(box.end),
                           [&box](const Bin& bin) { return bin.mean(box.axis) < box.mean; });
        const auto cut = box.first + static_cast<size_t>(middle - begin);
        if (cut == box.first || cut == box.end) {  // differences below the arithmetic's precision
            box.spread = 0;
            continue;
        }
        Box upper = {cut, box.end};
        box.end = cut;
        measure(box, bins);
        measure(upper, bins);
        boxes.push_back(upper);
    }
    for (const Box& box : boxes) colors_.push_back(colorOf(box, bins));
}

int ColorQuantizer::nearest(int red, int green, int blue) {
    constexpr int kDrop = 8 - kCacheBits;
    const int index = red >> kDrop << 2 * kCacheBits | green >> kDrop << kCacheBits | blue >> kDrop;
    int16_t& found = found_[static_cast<size_t>(index)];
    if (found >= 0) return found;
    int least = 1 << 30;
    for (size_t i = 0; i < colors_.size(); ++i) {
        const int dr = static_cast<int>(colors_[i] >> 16) - red;
        const int dg = static_cast<int>(colors_[i] >> 8 & 0xff) - green;
        const int db = static_cast<int>(colors_[i] & 0xff) - blue;
        const int distance = 3 * dr * dr + 6 * dg * dg + db * db;  // about the eye's weights
        if (distance >= least) continue;
        least = distance;
        found = static_cast<int16_t>(i);
    }
    return found;
}

}  // namespace vorla

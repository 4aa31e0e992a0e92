#include "imaging/png/PngPalette.h"

#include <cstring>

namespace vorla {

size_t PngPalette::slotOf(uint32_t color) const {
    size_t slot = color * 0x9e3779b1U >> 20;
    while (slots_[slot] != color && slots_[slot] != kEmpty) slot = (slot + 1) % kSlots;
    return slot;
}

std::optional<PngPalette> PngPalette::of(const QImage& image) {
    PngPalette palette;
    uint32_t last = kEmpty;
    const auto width = static_cast<size_t>(image.width());
    for (int y = 0; y < image.height(); ++y) {
        const auto* pixels = reinterpret_cast<const uint32_t*>(image.constScanLine(y));
        if (y > 0 && std::memcmp(pixels, image.constScanLine(y - 1), width * 4) == 0) continue;
        for (size_t x = 0; x < width; ++x) {
            // Eight pixels like the one before them, as most are.
            if (x > 0 && x + 8 <= width && std::memcmp(pixels + x, pixels + x - 1, 32) == 0) {
                x += 7;
                continue;
            }
            const uint32_t color = pixels[x] & 0xffffffU;
            if (color == last) continue;
            last = color;
            const size_t slot = palette.slotOf(color);
            if (palette.slots_[slot] == color) continue;
            if (palette.colors_.size() == kMaximumColors) return std::nullopt;
            palette.slots_[slot] = color;
            palette.numbers_[slot] = static_cast<uint8_t>(palette.colors_.size());
            palette.colors_.push_back(color);
        }
    }
    return palette;
}

void PngPalette::index(const uint32_t* pixels, size_t count, uint8_t* out) const {
    uint32_t last = kEmpty;
    uint8_t number = 0;
    for (size_t i = 0; i < count; ++i) {
        const uint32_t color = pixels[i] & 0xffffffU;
        if (color != last) {
            last = color;
            number = numbers_[slotOf(color)];
        }
        out[i] = number;
    }
}

}  // namespace vorla

#pragma once

#include <QImage>
#include <cstdint>
#include <optional>
#include <vector>

namespace vorla {

/// The colours of an opaque picture that has at most 256 of them, as nearly all flat interfaces
/// without sub-pixel text do: one byte a pixel then says the same as three.
class PngPalette {
 public:
    static constexpr size_t kMaximumColors = 256;

    /// Collects the colours of a 32-bit picture, alpha disregarded; nothing as soon as there are
    /// too many, which for a photograph is after its first rows.
    static std::optional<PngPalette> of(const QImage& image);

    /// 0x00RRGGBB words in the order of their numbers.
    [[nodiscard]] const std::vector<uint32_t>& colors() const { return colors_; }

    /// Writes the number of each pixel's colour.
    void index(const uint32_t* pixels, size_t count, uint8_t* out) const;

 private:
    static constexpr size_t kSlots = 4096;
    static constexpr uint32_t kEmpty = 0xffffffffU;

    PngPalette() : slots_(kSlots, kEmpty), numbers_(kSlots) {}
    [[nodiscard]] size_t slotOf(uint32_t color) const;

    std::vector<uint32_t> slots_;
    std::vector<uint8_t> numbers_;
    std::vector<uint32_t> colors_;
};

}  // namespace vorla

#include "platform/view/dimming.h"

#include <cmath>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace vorla {
namespace {

/// The blend of one channel, out = source * keep / 256 + add, with keep and add for the whole row.
struct Blend {
    uint16_t keep;
    uint16_t add[4];  ///< blue, green, red, alpha as they lie in memory, times 256

    explicit Blend(const QColor& color)
        : keep(static_cast<uint16_t>(std::lround((1.0 - color.alphaF()) * 256.0))), add{} {
        const double channels[4] = {color.blueF(), color.greenF(), color.redF(), 0.0};
        for (int i = 0; i < 4; ++i)
            add[i] = static_cast<uint16_t>(
                std::lround(channels[i] * 255.0 * static_cast<double>(color.alphaF()) * 256.0));
    }

    [[nodiscard]] uint32_t pixel(uint32_t source) const {
        uint32_t result = 0xff000000U;
        for (int i = 0; i < 3; ++i) {
            const uint32_t channel = (source >> (8 * i)) & 0xffU;
            result |= ((channel * keep + add[i]) >> 8) << (8 * i);
        }
        return result;
    }
};

void dimRow(uint32_t* target, const uint32_t* source, int count, const Blend& blend) {
    int i = 0;
#if defined(__SSE2__)
    const __m128i keep = _mm_set1_epi16(static_cast<short>(blend.keep));
    const __m128i add =
        _mm_setr_epi16(static_cast<short>(blend.add[0]), static_cast<short>(blend.add[1]),
                       static_cast<short>(blend.add[2]), 0, static_cast<short>(blend.add[0]),
                       static_cast<short>(blend.add[1]), static_cast<short>(blend.add[2]), 0);
    const __m128i opaque = _mm_set1_epi32(static_cast<int>(0xff000000U));
    const __m128i zero = _mm_setzero_si128();
    for (; i + 4 <= count; i += 4) {
        const __m128i four = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source + i));
        const __m128i low = _mm_unpacklo_epi8(four, zero);
        const __m128i high = _mm_unpackhi_epi8(four, zero);
        const __m128i dimmedLow = _mm_srli_epi16(_mm_add_epi16(_mm_mullo_epi16(low, keep), add), 8);
        const __m128i dimmedHigh =
            _mm_srli_epi16(_mm_add_epi16(_mm_mullo_epi16(high, keep), add), 8);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(target + i),
                         _mm_or_si128(_mm_packus_epi16(dimmedLow, dimmedHigh), opaque));
    }
#endif
    for (; i < count; ++i) target[i] = blend.pixel(source[i]);
}

}  // namespace

void copyDimmed(const QImage& source, const QRect& rect, const QColor& color,
                const PixelTarget& target) {
    const Blend blend(color);
    for (int y = 0; y < rect.height(); ++y)
        dimRow(reinterpret_cast<uint32_t*>(target.first + y * target.bytesPerLine),
               reinterpret_cast<const uint32_t*>(source.constScanLine(rect.y() + y)) + rect.x(),
               rect.width(), blend);
}

}  // namespace vorla

#include <gif_lib.h>

#include <algorithm>
#include <array>
#include <bit>
#include <memory>
#include <unordered_map>
#include <vector>

#include "imaging/ColorQuantizer.h"
#include "imaging/MemoryFile.h"
#include "imaging/PictureModule.h"

namespace {

using namespace vorla;

constexpr int kLargestSide = 65535;
constexpr size_t kMaximumColors = 256;
constexpr int kNoTransparency = -1;

struct IndexedPicture {
    std::vector<uint32_t> colors;
    std::vector<GifByteType> pixels;
    int transparent = kNoTransparency;
};

bool isClear(QRgb pixel) {
    return qAlpha(pixel) < 128;
}

bool hasClearPixels(const QImage& image) {
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        if (std::any_of(line, line + image.width(), isClear)) return true;
    }
    return false;
}

// The picture by its own colours; false if they are more than `maximum`.
bool indexExactly(const QImage& image, size_t maximum, IndexedPicture& picture) {
    std::unordered_map<QRgb, GifByteType> numbers;
    GifByteType* out = picture.pixels.data();
    QRgb last = 0;  // clear, so never equal to a colour
    GifByteType number = 0;
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x, ++out) {
            if (isClear(line[x])) continue;
            const QRgb color = line[x] | 0xff000000U;
            if (color != last) {
                const auto [known, isNew] =
                    numbers.try_emplace(color, static_cast<GifByteType>(numbers.size()));
                if (isNew && numbers.size() > maximum) return false;
                if (isNew) picture.colors.push_back(color & 0xffffffU);
                number = known->second;
                last = color;
            }
            *out = number;
        }
    }
    return true;
}

// Sixteenths of the errors that fall on a row, with one pixel to spare at each end.
using ErrorRow = std::vector<std::array<int, 3>>;

class Ditherer {
 public:
    Ditherer(const QImage& image, ColorQuantizer& quantizer)
        : image_(image),
          quantizer_(quantizer),
          here_(static_cast<size_t>(image.width()) + 2),
          below_(here_.size()) {}

    // Rows run in alternating directions, or errors would drift to one side and show as worms.
    void row(int y, GifByteType* out) {
        const auto* line = reinterpret_cast<const QRgb*>(image_.constScanLine(y));
        const bool leftward = y % 2 != 0;
        const int width = image_.width();
        for (int step = 0; step < width; ++step) {
            const int x = leftward ? width - 1 - step : step;
            if (!isClear(line[x])) out[x] = pixel(line[x], static_cast<size_t>(x) + 1, leftward);
        }
        here_.swap(below_);
        std::fill(below_.begin(), below_.end(), std::array<int, 3>{});
    }

 private:
    GifByteType pixel(QRgb color, size_t at, bool leftward) {
        std::array<int, 3> wanted = {qRed(color), qGreen(color), qBlue(color)};
        for (size_t c = 0; c < 3; ++c)
            wanted[c] = std::clamp(wanted[c] + here_[at][c] / 16, 0, 255);
        const int number = quantizer_.nearest(wanted[0], wanted[1], wanted[2]);
        const uint32_t got = quantizer_.colors()[static_cast<size_t>(number)];
        const size_t ahead = leftward ? at - 1 : at + 1;
        const size_t behind = leftward ? at + 1 : at - 1;
        for (size_t c = 0; c < 3; ++c) {
            const int error = wanted[c] - static_cast<int>(got >> (16 - 8 * c) & 0xff);
            here_[ahead][c] += error * 7;
            below_[behind][c] += error * 3;
            below_[at][c] += error * 5;
            below_[ahead][c] += error;
        }
        return static_cast<GifByteType>(number);
    }

    const QImage& image_;
    ColorQuantizer& quantizer_;
    ErrorRow here_;
    ErrorRow below_;
};

IndexedPicture indexed(const QImage& image) {
    const bool clear = hasClearPixels(image);
    const size_t maximum = clear ? kMaximumColors - 1 : kMaximumColors;
    IndexedPicture picture;
    picture.pixels.resize(static_cast<size_t>(image.width()) * static_cast<size_t>(image.height()));
    if (!indexExactly(image, maximum, picture)) {
        ColorQuantizer quantizer(image, maximum);
        picture.colors = quantizer.colors();
        Ditherer ditherer(image, quantizer);
        for (int y = 0; y < image.height(); ++y)
            ditherer.row(y, picture.pixels.data() + static_cast<ptrdiff_t>(y) * image.width());
    }
    if (!clear) return picture;
    picture.transparent = static_cast<int>(picture.colors.size());
    picture.colors.push_back(0xffffff);
    GifByteType* out = picture.pixels.data();
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x, ++out)
            if (isClear(line[x])) *out = static_cast<GifByteType>(picture.transparent);
    }
    return picture;
}

struct MapDeleter {
    void operator()(ColorMapObject* map) const { GifFreeMapObject(map); }
};
using MapPtr = std::unique_ptr<ColorMapObject, MapDeleter>;

struct GifCloser {
    void operator()(GifFileType* gif) const { EGifCloseFile(gif, nullptr); }
};
using GifPtr = std::unique_ptr<GifFileType, GifCloser>;

MapPtr colorMap(const std::vector<uint32_t>& colors) {
    const auto size = std::max<size_t>(2, std::bit_ceil(colors.size()));
    MapPtr map(GifMakeMapObject(static_cast<int>(size), nullptr));
    for (size_t i = 0; map && i < colors.size(); ++i)
        map->Colors[i] = {static_cast<GifByteType>(colors[i] >> 16),
                          static_cast<GifByteType>(colors[i] >> 8),
                          static_cast<GifByteType>(colors[i])};
    return map;
}

bool putTransparency(GifFileType* gif, int transparent) {
    if (transparent == kNoTransparency) return true;
    GraphicsControlBlock block = {};
    block.TransparentColor = transparent;
    GifByteType bytes[4];
    const size_t size = EGifGCBToExtension(&block, bytes);
    return EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, static_cast<int>(size), bytes) == GIF_OK;
}

int writeBytes(GifFileType* gif, const GifByteType* data, int size) {
    return static_cast<int>(static_cast<MemoryFile*>(gif->UserData)->write(data, size));
}

}  // namespace

/// Up to 256 colours (255 with transparent pixels) are kept exactly; of more, the best are chosen
/// and the rest dithered (error diffusion after Floyd and Steinberg, 1976). Pixels with an alpha
/// below 128 become transparent, others opaque. Sides above 65535 are refused.
void vorlaEncodePicture(const QImage& image, QByteArray& bytes) {
    const int width = image.width(), height = image.height();
    if (width > kLargestSide || height > kLargestSide) return;
    const QImage source = image.convertToFormat(QImage::Format_ARGB32);
    if (source.isNull()) return;
    IndexedPicture picture = indexed(source);
    const MapPtr map = colorMap(picture.colors);
    MemoryFile file;
    GifPtr gif(EGifOpen(&file, writeBytes, nullptr));
    if (!map || !gif) return;
    EGifSetGifVersion(gif.get(), true);
    bool done = EGifPutScreenDesc(gif.get(), width, height, 8, 0, map.get()) == GIF_OK &&
                putTransparency(gif.get(), picture.transparent) &&
                EGifPutImageDesc(gif.get(), 0, 0, width, height, false, nullptr) == GIF_OK;
    for (int y = 0; done && y < height; ++y)
        done = EGifPutLine(gif.get(), picture.pixels.data() + static_cast<ptrdiff_t>(y) * width,
                           width) == GIF_OK;
    const bool closed = EGifCloseFile(gif.release(), nullptr) == GIF_OK;
    if (done && closed) bytes = file.bytes();
}

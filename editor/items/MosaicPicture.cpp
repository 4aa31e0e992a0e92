#include "editor/items/MosaicPicture.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <system_error>
#include <vector>

#include "platform/base/DispatchQueue.h"

namespace vorla {
namespace {

constexpr int kSide = MosaicPicture::kBlockSide;

// Sums of 20 rows of bytes fit 16 bits, those of a whole square 32.
typedef uint8_t Bytes __attribute__((vector_size(16)));
typedef uint16_t RowSums __attribute__((vector_size(32)));
typedef uint32_t Channels __attribute__((vector_size(16)));
constexpr int kPixelsAtOnce = sizeof(Bytes) / sizeof(QRgb);

int firstBlockStart(int extent) {
    const int middleBlock = static_cast<int>(std::floor((extent - kSide) / 2.0));
    return middleBlock - (middleBlock + kSide - 1) / kSide * kSide;
}

int blockCount(int extent) {
    return (extent - firstBlockStart(extent) + kSide - 1) / kSide;
}

void addRow(const uchar* row, int width, std::vector<RowSums>& sums) {
    const int whole = width / kPixelsAtOnce;
    Bytes bytes = {};
    for (int i = 0; i < whole; ++i) {
        std::memcpy(&bytes, row + static_cast<size_t>(i) * sizeof(Bytes), sizeof(Bytes));
        sums[static_cast<size_t>(i)] += __builtin_convertvector(bytes, RowSums);
    }
    const size_t rest = static_cast<size_t>(width % kPixelsAtOnce) * sizeof(QRgb);
    if (rest == 0) return;
    bytes = Bytes{};
    std::memcpy(&bytes, row + static_cast<size_t>(whole) * sizeof(Bytes), rest);
    sums[static_cast<size_t>(whole)] += __builtin_convertvector(bytes, RowSums);
}

QRgb average(const uint16_t* sums, int pixelsPerRow, int rows, QRgb opaque) {
    Channels total = {};
    for (int x = 0; x < pixelsPerRow; ++x, sums += 4)
        total += Channels{sums[0], sums[1], sums[2], sums[3]};
    const auto count = static_cast<uint32_t>(pixelsPerRow * rows);
    total = (total + count / 2) / count;
    return opaque | qRgba(static_cast<int>(total[2]), static_cast<int>(total[1]),
                          static_cast<int>(total[0]), static_cast<int>(total[3]));
}

QImage averages(const QImage& image) {
    const bool hasAlpha = image.hasAlphaChannel();
    const auto format = hasAlpha ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
    const QImage from = image.format() == format ? image : image.convertToFormat(format);
    // The byte that an opaque format leaves unused may hold anything.
    const QRgb opaque = hasAlpha ? 0 : 0xff000000;
    const int left = firstBlockStart(from.width());
    const int top = firstBlockStart(from.height());
    QImage blocks(blockCount(from.width()), blockCount(from.height()),
                  QImage::Format_ARGB32_Premultiplied);
    const auto vectors = static_cast<size_t>((from.width() + kPixelsAtOnce - 1) / kPixelsAtOnce);
    std::vector<RowSums> sums(vectors);
    for (int by = 0; by < blocks.height(); ++by) {
        const int y0 = std::max(0, top + by * kSide);
        const int y1 = std::min(from.height(), top + (by + 1) * kSide);
        std::fill(sums.begin(), sums.end(), RowSums{});
        for (int y = y0; y < y1; ++y) addRow(from.constScanLine(y), from.width(), sums);
        const auto* perPixel = reinterpret_cast<const uint16_t*>(sums.data());
        auto* out = reinterpret_cast<QRgb*>(blocks.scanLine(by));
        for (int bx = 0; bx < blocks.width(); ++bx) {
            const int x0 = std::max(0, left + bx * kSide);
            const int x1 = std::min(from.width(), left + (bx + 1) * kSide);
            out[bx] = average(perPixel + 4 * static_cast<size_t>(x0), x1 - x0, y1 - y0, opaque);
        }
    }
    return blocks;
}

}  // namespace

std::shared_ptr<MosaicPicture> MosaicPicture::create(const QImage& image) {
    if (image.isNull()) return nullptr;
    return std::shared_ptr<MosaicPicture>(new MosaicPicture(image));
}

void MosaicPicture::prepare() {
    try {
        DispatchQueue::inBackground([self = shared_from_this()] { self->blocks(); });
    } catch (const std::system_error&) {
        // Without a thread, the first stroke works them out.
    }
}

MosaicPicture::MosaicPicture(const QImage& image)
    : size_{image.width() / image.devicePixelRatio(), image.height() / image.devicePixelRatio()},
      pixels_(image.size()),
      pixelsPerPoint_(image.devicePixelRatio()),
      first_(firstBlockStart(image.width()), firstBlockStart(image.height())),
      source_(image) {}

const QImage& MosaicPicture::blocks() {
    std::call_once(averaged_, [this] {
        blocks_ = averages(source_);
        source_ = {};
    });
    return blocks_;
}

void MosaicPicture::colorsOfRow(double y, const double* xs, int count, QRgb* colors) {
    const QImage& from = blocks();
    if (y < 0 || y >= pixels_.height()) {
        std::fill_n(colors, count, 0U);
        return;
    }
    const int row = static_cast<int>((y - first_.y()) / kSide);
    const auto* line = reinterpret_cast<const QRgb*>(from.constScanLine(row));
    for (int i = 0; i < count; ++i) {
        const bool inside = xs[i] >= 0 && xs[i] < pixels_.width();
        colors[i] = inside ? line[static_cast<int>((xs[i] - first_.x()) / kSide)] : 0;
    }
}

}  // namespace vorla

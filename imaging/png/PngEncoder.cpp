#include "imaging/png/PngEncoder.h"

#include <libdeflate.h>
#include <zlib.h>

#include <QtEndian>
#include <algorithm>
#include <array>
#include <atomic>
#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "imaging/ImageResolution.h"
#include "imaging/ParallelWork.h"
#include "imaging/png/PngFilter.h"
#include "imaging/png/PngStripe.h"

namespace vorla {
namespace {

constexpr size_t kStripeBytes = size_t{512} << 10;
constexpr size_t kSmallestStripe = size_t{64} << 10;
constexpr size_t kPixelsPerWorker = size_t{1} << 20;
constexpr int kSmallestIndexed = 4096;  // pixels; below, a palette is not worth its bytes
constexpr size_t kLargestRow = size_t{1} << 28;
// Length, type, and in the first chunk the header of the zlib stream.
constexpr std::array<uint8_t, 10> kFirstHead = {0, 0, 0, 0, 'I', 'D', 'A', 'T', 0x78, 0x5e};
constexpr size_t kChunkHead = 8;

void appendWord(QByteArray& out, uint32_t value) {
    const uint32_t bigEndian = qToBigEndian(value);
    out.append(reinterpret_cast<const char*>(&bigEndian), sizeof bigEndian);
}

void appendChunk(QByteArray& out, const char* type, const QByteArray& data) {
    appendWord(out, static_cast<uint32_t>(data.size()));
    const auto start = out.size();
    out.append(type, 4);
    out.append(data);
    appendWord(
        out, libdeflate_crc32(0, out.constData() + start, static_cast<size_t>(out.size() - start)));
}

QByteArray headerData(const PngLayout& layout) {
    QByteArray data;
    appendWord(data, static_cast<uint32_t>(layout.image->width()));
    appendWord(data, static_cast<uint32_t>(layout.image->height()));
    const char colorType = layout.palette ? 3 : layout.hasAlpha ? 6 : 2;
    data.append(8).append(colorType).append(3, '\0');
    return data;
}

QByteArray paletteData(const PngPalette& palette) {
    QByteArray data;
    for (const uint32_t color : palette.colors())
        for (const int shift : {16, 8, 0}) data.append(static_cast<char>(color >> shift));
    return data;
}

QByteArray resolutionData(const QImage& image) {
    QByteArray data;
    appendWord(data, static_cast<uint32_t>(dotsPerMeter(image)));
    appendWord(data, static_cast<uint32_t>(dotsPerMeter(image)));
    return data.append(1);
}

/// The IDAT chunks of one picture. Workers hand in stripes in any order; each is appended to the
/// file as soon as those before it are there.
class ImageData {
 public:
    explicit ImageData(QByteArray& out) : out_(out) {}

    void add(size_t number, std::vector<uint8_t> chunk, PngStripe::Sum sum) {
        const std::lock_guard lock(mutex_);
        waiting_.emplace(number, Stripe{std::move(chunk), sum});
        for (auto first = waiting_.begin(); first != waiting_.end() && first->first == next_;
             first = waiting_.erase(first), ++next_) {
            const Stripe& stripe = first->second;
            out_.append(reinterpret_cast<const char*>(stripe.chunk.data()),
                        static_cast<qsizetype>(stripe.chunk.size()));
            adler_ = static_cast<uint32_t>(
                adler32_combine(adler_, stripe.sum.adler, static_cast<z_off_t>(stripe.sum.bytes)));
        }
    }
    [[nodiscard]] uint32_t adler() const { return adler_; }

 private:
    struct Stripe {
        std::vector<uint8_t> chunk;
        PngStripe::Sum sum;
    };
    QByteArray& out_;
    std::mutex mutex_;
    std::map<size_t, Stripe> waiting_;
    size_t next_ = 0;
    uint32_t adler_ = 1;
};

// One whole IDAT chunk: length, type, data (the first with the two bytes of the zlib header before
// it), checksum.
std::vector<uint8_t> stripeChunk(PngStripe& stripe, size_t number, PngStripe::Sum& sum) {
    std::vector<uint8_t> chunk(kFirstHead.begin(),
                               number == 0 ? kFirstHead.end() : kFirstHead.begin() + kChunkHead);
    sum = stripe.encode(number, chunk);
    qToBigEndian(static_cast<uint32_t>(chunk.size() - kChunkHead), chunk.data());
    const uint32_t crc = libdeflate_crc32(0, chunk.data() + 4, chunk.size() - 4);
    chunk.resize(chunk.size() + sizeof crc);
    qToBigEndian(crc, chunk.data() + chunk.size() - sizeof crc);
    return chunk;
}

bool encodeStripes(const PngLayout& layout, unsigned workers, QByteArray& out) {
    std::vector<std::unique_ptr<PngStripe>> crew(workers);
    std::atomic<bool> failed = false;
    ImageData data(out);
    workInParallel(layout.stripes(), workers - 1, [&](unsigned worker, size_t number) {
        if (failed) return;
        try {
            if (!crew[worker]) crew[worker] = std::make_unique<PngStripe>(layout);
            PngStripe::Sum sum = {};
            std::vector<uint8_t> chunk = stripeChunk(*crew[worker], number, sum);
            data.add(number, std::move(chunk), sum);
        } catch (const std::exception&) {
            failed = true;
        }
    });
    if (failed) return false;
    QByteArray checksum;
    appendWord(checksum, data.adler());
    appendChunk(out, "IDAT", checksum);
    return true;
}

QImage readable(const QImage& image) {
    switch (image.format()) {
        case QImage::Format_RGB32:
        case QImage::Format_ARGB32:
        case QImage::Format_ARGB32_Premultiplied:
            return image;
        default:
            return image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32
                                                                 : QImage::Format_RGB32);
    }
}

bool isOpaque(const QImage& image) {
    if (image.format() == QImage::Format_RGB32) return true;
    for (int y = 0; y < image.height(); ++y)
        if (!PngFilter::isOpaque(reinterpret_cast<const uint32_t*>(image.constScanLine(y)),
                                 static_cast<size_t>(image.width())))
            return false;
    return true;
}

QByteArray encoded(const QImage& image, PngEncoder::Options options) {
    const auto pixels = static_cast<size_t>(image.width()) * static_cast<size_t>(image.height());
    PngLayout layout = {&image, nullptr, !isOpaque(image), 1};
    std::optional<PngPalette> palette;
    if (options.mayIndexColors && !layout.hasAlpha && pixels >= kSmallestIndexed)
        palette = PngPalette::of(image);
    layout.palette = palette ? &*palette : nullptr;
    if (layout.rowBytes() > kLargestRow) return {};

    // A worker holds about two stripes' worth of memory; so many of them stay well below half of
    // the picture's size.
    const auto workers = static_cast<unsigned>(std::clamp<size_t>(
        pixels / kPixelsPerWorker, 1, std::max(1U, std::thread::hardware_concurrency())));
    const size_t total = layout.rowBytes() * static_cast<size_t>(image.height());
    const size_t stripe = std::clamp(total / (size_t{workers} * 4), kSmallestStripe, kStripeBytes);
    layout.rowsPerStripe = std::max<size_t>(1, stripe / (layout.rowBytes() + 1));

    QByteArray out("\x89PNG\r\n\x1a\n", 8);
    appendChunk(out, "IHDR", headerData(layout));
    if (image.devicePixelRatio() != 1) appendChunk(out, "pHYs", resolutionData(image));
    if (palette) appendChunk(out, "PLTE", paletteData(*palette));
    if (!encodeStripes(layout, workers, out)) return {};
    appendChunk(out, "IEND", {});
    out.squeeze();
    return out;
}

}  // namespace

QByteArray PngEncoder::encode(const QImage& image, Options options) {
    if (image.isNull()) return {};
    try {
        const QImage source = readable(image);
        return source.isNull() ? QByteArray() : encoded(source, options);
    } catch (const std::exception&) {
        return {};
    }
}

}  // namespace vorla

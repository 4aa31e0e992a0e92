#include "imaging/png/PngStripes.h"

#include <libdeflate.h>
#include <zlib.h>

#include <algorithm>
#include <atomic>
#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "imaging/png/PngChunk.h"
#include "imaging/png/PngDeflate.h"
#include "platform/base/ParallelWork.h"

namespace vorla {
namespace {

constexpr size_t kLargestStripe = size_t{512} << 10;
constexpr size_t kSmallestStripe = size_t{128} << 10;
constexpr size_t kStripesPerWorker = 4;

/// One worker's compressor and memory.
class Stripe {
 public:
    explicit Stripe(const PngLayout& layout) : layout_(layout), rows_(layout) {}

    /// Rows `first` up to `end` as one IDAT chunk; the first begins the zlib stream, and the last
    /// ends it but for its checksum. Returns their Adler-32. Throws std::bad_alloc.
    uint32_t encode(size_t first, size_t end, QByteArray& out) {
        const size_t rowSize = layout_.filteredBytes();
        const size_t historyRows = std::min(first, (kDeflateHistory + rowSize - 1) / rowSize);
        window_.resize((end - first + historyRows) * rowSize);
        rows_.filter(first - historyRows, end, window_.data());
        uint8_t* stripe = window_.data() + historyRows * rowSize;
        const size_t size = (end - first) * rowSize;

        PngChunk chunk("IDAT", out);
        if (first == 0) out.append("\x78\x01", 2);  // RFC 1950: deflate with 32 KiB, fast
        coder_.append(stripe, size, historyRows * rowSize, end == layout_.rows(), out);
        chunk.end();
        return libdeflate_adler32(1, stripe, size);
    }

 private:
    const PngLayout& layout_;
    PngRows rows_;
    QuickDeflate coder_;
    std::vector<uint8_t> window_;  // filtered rows: history, then the stripe
};

/// Takes chunks in any order; each is appended as soon as those before it are there.
class Joiner {
 public:
    explicit Joiner(QByteArray& out) : out_(out) {}

    void add(size_t number, QByteArray chunk, uint32_t adler, size_t bytes) {
        const std::lock_guard lock(mutex_);
        waiting_.emplace(number, Piece{std::move(chunk), adler, bytes});
        for (auto first = waiting_.begin(); first != waiting_.end() && first->first == next_;
             first = waiting_.erase(first), ++next_) {
            const Piece& piece = first->second;
            out_.append(piece.chunk);
            adler_ = static_cast<uint32_t>(
                adler32_combine(adler_, piece.adler, static_cast<z_off_t>(piece.bytes)));
        }
    }
    [[nodiscard]] uint32_t adler() const { return adler_; }

 private:
    struct Piece {
        QByteArray chunk;
        uint32_t adler;
        size_t bytes;
    };
    QByteArray& out_;
    std::mutex mutex_;
    std::map<size_t, Piece> waiting_;
    size_t next_ = 0;
    uint32_t adler_ = 1;
};

}  // namespace

bool appendStripes(const PngLayout& layout, QByteArray& out) {
    const size_t total = layout.filteredBytes() * layout.rows();
    const size_t cores = std::max(1U, std::thread::hardware_concurrency());
    const size_t wanted =
        std::clamp(total / (cores * kStripesPerWorker), kSmallestStripe, kLargestStripe);
    const size_t rowsPerStripe = std::max<size_t>(1, wanted / layout.filteredBytes());
    const size_t stripes = (layout.rows() + rowsPerStripe - 1) / rowsPerStripe;
    // A worker holds about three stripes' worth of memory; so many of them stay well below half of
    // the picture's size.
    const size_t workers = std::clamp<size_t>(stripes / kStripesPerWorker, 1, cores);

    std::vector<std::unique_ptr<Stripe>> crew(workers);
    std::atomic<bool> failed = false;
    Joiner joiner(out);
    workInParallel(
        stripes, static_cast<unsigned>(workers - 1), [&](unsigned worker, size_t number) {
            if (failed) return;
            try {
                if (!crew[worker]) crew[worker] = std::make_unique<Stripe>(layout);
                const size_t first = number * rowsPerStripe;
                const size_t end = std::min(first + rowsPerStripe, layout.rows());
                QByteArray chunk;
                const uint32_t adler = crew[worker]->encode(first, end, chunk);
                joiner.add(number, std::move(chunk), adler, (end - first) * layout.filteredBytes());
            } catch (const std::exception&) {
                failed = true;
            }
        });
    if (failed) return false;
    PngChunk checksum("IDAT", out);
    PngChunk::appendWord(joiner.adler(), out);
    checksum.end();
    return true;
}

}  // namespace vorla

#include "imaging/png/PngParts.h"

#include <libdeflate.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <exception>
#include <functional>
#include <memory>
#include <new>
#include <thread>
#include <vector>

#include "imaging/png/PngChunk.h"
#include "imaging/png/PngDeflate.h"
#include "imaging/png/PngFilter.h"
#include "platform/base/ParallelWork.h"

namespace vorla {
namespace {

constexpr size_t kSmallestDivided = size_t{512} << 10;  // bytes
constexpr size_t kPieces = 64;

// Shares of the work. Of a flat picture igzip takes as much as leaves the file small. A part that
// is read again takes as long as the one after it.
constexpr double kQuickShare = 0.25, kReopenedShareOfFlat = 0.3, kReopenedShare = 0.44;

// Levels of libdeflate. At 6 files are no larger than those of the usual writers. Where someone
// waits, 5 does for that; for soft shades, which take long, 4 is the most that the time allows.
constexpr int kQuick = 0;  // igzip
constexpr int kLevelForSize = 6;
constexpr int kLevel = 5;
constexpr int kShadeLevel = 4;

/// A run of rows and what becomes of it.
struct Part {
    size_t first, end;
    int level;
    QByteArray deflated = {};
    uint32_t adler = 1;
};

void onAllProcessors(size_t pieces, const std::function<void(size_t)>& work) {
    std::atomic<bool> failed = false;
    workInParallel(pieces, std::max(1U, std::thread::hardware_concurrency()) - 1,
                   [&](unsigned, size_t number) {
                       try {
                           if (!failed) work(number);
                       } catch (const std::exception&) {
                           failed = true;
                       }
                   });
    if (failed) throw std::bad_alloc();
}

class Parts {
 public:
    explicit Parts(const PngLayout& layout)
        : layout_(layout),
          rowSize_(layout.filteredBytes()),
          rows_(new uint8_t[rowSize_ * layout.rows()]) {}

    void filter() {
        onAllProcessors(kPieces, [this](size_t number) {
            const size_t first = firstOf(number), end = firstOf(number + 1);
            if (first < end) PngRows(layout_).filter(first, end, row(first));
        });
    }

    void divide(PngEncoder::Goal goal) {
        const size_t rows = layout_.rows();
        const PngFilter::Residue all = PngFilter::residue(row(0), rowSize_ * rows);
        const int level = all.zeroes > 0.5 && !all.isFlat() ? kShadeLevel : kLevel;
        if (goal == PngEncoder::Goal::Size) {
            parts_ = {{0, rows, kLevelForSize}};
        } else if (rowSize_ * rows < kSmallestDivided) {
            parts_ = {{0, rows, level}};
        } else if (all.isFlat()) {
            const size_t quick = rowAt(kQuickShare);
            const size_t middle = rowAt(kQuickShare + kReopenedShareOfFlat);
            parts_ = {{0, quick, kQuick}, {quick, middle, level}, {middle, rows, level}};
        } else {
            const size_t middle = rowAt(kReopenedShare);
            parts_ = {{0, middle, level}, {middle, rows, level}};
        }
        std::erase_if(parts_, [](const Part& part) { return part.first == part.end; });
    }

    void deflate() {
        onAllProcessors(parts_.size(), [this](size_t number) {
            Part& part = parts_[number];
            uint8_t* const rows = row(part.first);
            const size_t size = rowSize_ * (part.end - part.first);
            const bool isEnd = part.end == layout_.rows();
            part.adler = libdeflate_adler32(1, rows, size);
            if (part.level == kQuick) {
                QuickDeflate().append(rows, size, 0, isEnd, part.deflated);
            } else {
                part.deflated = thoroughlyDeflated(rows, size, part.level);
                if (!isEnd) reopen(part.deflated, rows, size);
            }
        });
    }

    void append(QByteArray& out) const {
        PngChunk chunk("IDAT", out);
        out.append("\x78\x01", 2);  // RFC 1950: deflate with 32 KiB
        uint32_t adler = 1;
        for (const Part& part : parts_) {
            out.append(part.deflated);
            adler = static_cast<uint32_t>(adler32_combine(
                adler, part.adler, static_cast<z_off_t>(rowSize_ * (part.end - part.first))));
        }
        PngChunk::appendWord(adler, out);
        chunk.end();
    }

 private:
    [[nodiscard]] size_t firstOf(size_t piece) const { return layout_.rows() * piece / kPieces; }

    /// The row before which libdeflate would spend such a share of its time. What is not zero takes
    /// it about nine times as long as what is.
    [[nodiscard]] size_t rowAt(double share) const {
        std::array<double, kPieces + 1> work = {};
        for (size_t piece = 0; piece < kPieces; ++piece) {
            const size_t first = firstOf(piece), end = firstOf(piece + 1);
            const auto residue = PngFilter::residue(row(first), rowSize_ * (end - first));
            work[piece + 1] =
                work[piece] + static_cast<double>(end - first) * (9 - 8 * residue.zeroes);
        }
        const auto* const found = std::ranges::lower_bound(work, share * work.back());
        return firstOf(static_cast<size_t>(found - work.begin()));
    }

    [[nodiscard]] uint8_t* row(size_t number) const { return rows_.get() + number * rowSize_; }

    const PngLayout& layout_;
    const size_t rowSize_;
    std::unique_ptr<uint8_t[]> rows_;  // filtered
    std::vector<Part> parts_;
};

}  // namespace

bool appendParts(const PngLayout& layout, PngEncoder::Goal goal, QByteArray& out) {
    const qsizetype before = out.size();
    try {
        Parts parts(layout);
        parts.filter();
        parts.divide(goal);
        parts.deflate();
        parts.append(out);
        return true;
    } catch (const std::exception&) {
        out.truncate(before);
        return false;
    }
}

}  // namespace vorla

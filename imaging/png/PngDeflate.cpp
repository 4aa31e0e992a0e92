#include "imaging/png/PngDeflate.h"

#include <libdeflate.h>
#include <zlib.h>

#include <algorithm>
#include <memory>
#include <new>

namespace vorla {
namespace {

/// Level 2 costs the time of level 1 and saves half a percent; level 3 takes half as long again.
constexpr uint32_t kQuickLevel = 2;

}  // namespace

QuickDeflate::QuickDeflate() : tables_(ISAL_DEF_LVL2_DEFAULT) {}

void QuickDeflate::append(const uint8_t* bytes, size_t size, size_t history, bool endsStream,
                          QByteArray& out) {
    isal_deflate_init(&stream_);
    stream_.level = kQuickLevel;
    stream_.level_buf = tables_.data();
    stream_.level_buf_size = static_cast<uint32_t>(tables_.size());
    stream_.end_of_stream = endsStream;
    stream_.flush = endsStream ? NO_FLUSH : SYNC_FLUSH;
    auto* const start = const_cast<uint8_t*>(bytes);  // igzip does not write there
    history = std::min(history, kDeflateHistory);
    if (history > 0)
        isal_deflate_set_dict(&stream_, start - history, static_cast<uint32_t>(history));
    stream_.next_in = start;
    stream_.avail_in = static_cast<uint32_t>(size);
    const size_t room = size / 2 + 4096;
    do {
        const qsizetype used = out.size();
        out.resize(used + static_cast<qsizetype>(room));
        stream_.next_out = reinterpret_cast<uint8_t*>(out.data() + used);
        stream_.avail_out = static_cast<uint32_t>(room);
        if (isal_deflate(&stream_) != COMP_OK) throw std::bad_alloc();
        out.chop(stream_.avail_out);
    } while (stream_.avail_out == 0);
}

QByteArray thoroughlyDeflated(const uint8_t* bytes, size_t size, int level) {
    const std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)> coder(
        libdeflate_alloc_compressor(level), &libdeflate_free_compressor);
    if (!coder) throw std::bad_alloc();
    const size_t room = libdeflate_deflate_compress_bound(coder.get(), size);
    QByteArray out(static_cast<qsizetype>(room), Qt::Uninitialized);
    out.truncate(static_cast<qsizetype>(
        libdeflate_deflate_compress(coder.get(), bytes, size, out.data(), room)));
    return out;
}

// Where the last block begins, only the one before it says, so all are read. Then the last one's
// mark is taken away, and an empty stored block behind it fills its last byte.
void reopen(QByteArray& deflated, uint8_t* bytes, size_t size) {
    constexpr int kIsLast = 64, kHasEnded = 128;
    z_stream reader = {};
    if (inflateInit2(&reader, -MAX_WBITS) != Z_OK) throw std::bad_alloc();
    const std::unique_ptr<z_stream, decltype(&inflateEnd)> ending(&reader, &inflateEnd);
    auto* const data = reinterpret_cast<uint8_t*>(deflated.data());
    reader.next_in = data;
    reader.avail_in = static_cast<uInt>(deflated.size());
    reader.next_out = bytes;
    reader.avail_out = static_cast<uInt>(size);
    size_t last = 0, end = 0;  // bits
    do {
        last = end;
        const int result = inflate(&reader, Z_BLOCK);
        if ((result != Z_OK && result != Z_STREAM_END) || (reader.data_type & kHasEnded) == 0)
            throw std::bad_alloc();  // zlib's window, or a coder that is out of order
        end = static_cast<size_t>(reader.next_in - data) * 8 -
              static_cast<size_t>(reader.data_type & 7);
    } while ((reader.data_type & kIsLast) == 0);
    data[last / 8] &= static_cast<uint8_t>(~(1U << last % 8));
    deflated.resize(static_cast<qsizetype>((end + 7) / 8));
    constexpr size_t kHeaderBits = 3;  // zeroes, as the unused bits are
    if ((end + 7) / 8 * 8 - end < kHeaderBits) deflated.append('\0');
    deflated.append("\0\0\xff\xff", 4);
}

}  // namespace vorla

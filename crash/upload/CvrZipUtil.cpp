#include "crash/upload/CvrZipUtil.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <climits>

#include "crash/CvrLog.h"

namespace {

using Bytes = std::vector<uint8_t>;

constexpr int gzipWindow = 31;
constexpr int detectWindow = 47;
constexpr int rawWindow = -15;

using Step = int (*)(z_stream*, int);

/// Feeds the whole input to `step` until it says that the stream has ended. The output begins with
/// `room` bytes and grows by half of the input's length, to `most` at the most.
std::optional<Bytes> run(z_stream& stream, Step step, int flush, std::span<const uint8_t> data,
                         size_t room, size_t most) {
    Bytes output(std::min(std::max<size_t>(room, 64), most));
    stream.next_in = const_cast<Bytef*>(data.data());
    stream.avail_in = static_cast<uInt>(data.size());
    for (;;) {
        stream.next_out = output.data() + stream.total_out;
        stream.avail_out = static_cast<uInt>(output.size() - stream.total_out);
        const int result = step(&stream, flush);
        if (result == Z_STREAM_END) break;
        const bool full = stream.avail_out == 0;
        if ((result != Z_OK && result != Z_BUF_ERROR) || !full || output.size() == most)
            return std::nullopt;
        output.resize(std::min(output.size() + std::max<size_t>(data.size() / 2, 64), most));
    }
    output.resize(stream.total_out);
    return output;
}

std::optional<Bytes> deflated(std::span<const uint8_t> data, int window, int memory) {
    if (data.empty() || data.size() > INT_MAX / 2) return std::nullopt;
    z_stream stream = {};
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, window, memory,
                     Z_DEFAULT_STRATEGY) != Z_OK)
        return std::nullopt;
    auto output = run(stream, &deflate, Z_FINISH, data, data.size() / 2, SIZE_MAX);
    deflateEnd(&stream);
    return output;
}

}  // namespace

std::optional<Bytes> GZipCvrZipUtil::zip(std::span<const uint8_t> data) {
    return deflated(data, gzipWindow, 8);
}

std::optional<Bytes> GZipCvrZipUtil::unzip(std::span<const uint8_t> data) {
    if (data.empty() || data.size() > largestBody) return std::nullopt;
    z_stream stream = {};
    if (inflateInit2(&stream, detectWindow) != Z_OK) return std::nullopt;
    auto output = run(stream, &inflate, Z_NO_FLUSH, data, data.size() * 3 / 2, largestBody);
    inflateEnd(&stream);
    return output;
}

std::optional<Bytes> GZipCvrZipUtil::gzipCompress(std::span<const uint8_t> data) {
    const auto raw = deflated(data, rawWindow, 9);
    if (!raw) return std::nullopt;
    static constexpr std::array<uint8_t, 10> header = {0x1F, 0x8B, 8, 0, 0, 0, 0, 0, 2, 0xFF};
    Bytes packed(header.begin(), header.end());
    packed.insert(packed.end(), raw->begin(), raw->end());
    const auto sum = crc32(0, data.data(), static_cast<uInt>(data.size()));
    for (const uint64_t number : {uint64_t{sum}, uint64_t{data.size()}})
        for (unsigned shift = 0; shift < 32; shift += 8)
            packed.push_back(static_cast<uint8_t>(number >> shift));
    return packed;
}

std::unique_ptr<CvrZip> CvrZipUtil::getCvrZipUtil(int type) {
    if (type == gzip) return std::make_unique<GZipCvrZipUtil>();
    CvrLogError("<ERROR> CVR: unsupported zip type");
    return nullptr;
}

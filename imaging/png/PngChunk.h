#pragma once

#include <libdeflate.h>

#include <QByteArray>
#include <QtEndian>

namespace vorla {

/// One chunk of a PNG file: begun at the end of `out`, its data is what is appended until `end`.
class PngChunk {
 public:
    PngChunk(const char* type, QByteArray& out) : out_(out), start_(out.size()) {
        out_.append(kLengthBytes, '\0').append(type, 4);
    }

    /// Sets the length and appends the checksum, which covers type and data.
    void end() {
        char* start = out_.data() + start_;
        const auto typeAndData = static_cast<size_t>(out_.size() - start_ - kLengthBytes);
        qToBigEndian(static_cast<uint32_t>(typeAndData - 4), start);
        appendWord(libdeflate_crc32(0, start + kLengthBytes, typeAndData), out_);
    }

    static void appendWord(uint32_t value, QByteArray& out) {
        const uint32_t bigEndian = qToBigEndian(value);
        out.append(reinterpret_cast<const char*>(&bigEndian), sizeof bigEndian);
    }

 private:
    static constexpr qsizetype kLengthBytes = 4;
    QByteArray& out_;
    qsizetype start_;
};

}  // namespace vorla

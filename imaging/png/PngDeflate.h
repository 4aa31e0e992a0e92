#pragma once

#include <isa-l/igzip_lib.h>

#include <QByteArray>
#include <cstdint>
#include <vector>

namespace vorla {

/// The longest way back that deflate can refer to.
constexpr size_t kDeflateHistory = 32768;

/// Compresses by igzip: a multiple of libdeflate's speed, for larger files. One object serves one
/// thread. igzip chooses its instructions at run time, with plain C for processors that have none
/// of them.
class QuickDeflate {
 public:
    QuickDeflate();

    /// Appends the compressed form of `size` bytes, which may repeat bytes of the `history` before
    /// them. Unless it ends the stream, it ends on a byte boundary (RFC 1951), so that whatever
    /// follows is simply joined. Throws std::bad_alloc.
    void append(const uint8_t* bytes, size_t size, size_t history, bool endsStream,
                QByteArray& out);

 private:
    std::vector<uint8_t> tables_;
    isal_zstream stream_ = {};
};

/// The bytes compressed by libdeflate at a level of its own, as the end of a stream. Throws
/// std::bad_alloc.
QByteArray thoroughlyDeflated(const uint8_t* bytes, size_t size, int level);

/// Makes of the end of a stream a part of it that another can follow, on a byte boundary. It must
/// be read for that, which costs about a third of the time of compressing it: `bytes`, which it
/// was made of, are written again. Throws std::bad_alloc.
void reopen(QByteArray& deflated, uint8_t* bytes, size_t size);

}  // namespace vorla

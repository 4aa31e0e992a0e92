#pragma once

#include <QByteArray>
#include <algorithm>
#include <cstdint>
#include <cstring>

namespace vorla {

/// A growing file in memory, for the libraries that write through callbacks. Its operations are
/// called from C code and let no exception through it: after a failed allocation they report short
/// writes.
class MemoryFile {
 public:
    [[nodiscard]] const QByteArray& bytes() const { return bytes_; }
    [[nodiscard]] int64_t position() const { return position_; }
    [[nodiscard]] int64_t size() const { return bytes_.size(); }
    void seek(int64_t position) { position_ = std::max<int64_t>(0, position); }

    /// Returns the number of bytes written, 0 on failure.
    int64_t write(const void* data, int64_t count) noexcept {
        try {
            const int64_t end = position_ + count;
            if (end > bytes_.size()) bytes_.append(end - bytes_.size(), '\0');
            std::memcpy(bytes_.data() + position_, data, static_cast<size_t>(count));
            position_ = end;
            return count;
        } catch (...) {
            return 0;
        }
    }

    int64_t read(void* data, int64_t count) {
        count = std::clamp<int64_t>(bytes_.size() - position_, 0, count);
        std::memcpy(data, bytes_.constData() + position_, static_cast<size_t>(count));
        position_ += count;
        return count;
    }

 private:
    QByteArray bytes_;
    int64_t position_ = 0;
};

}  // namespace vorla

#pragma once

#include <bit>
#include <concepts>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "NEX/NEX+PAK/SerializationPAK/compact/PakBuffer.h"

namespace analyticspak {

/// The longest string, in bytes, that is written or read.
inline constexpr uint32_t kMaxStringLength = 104857600;

/// A type whose vectors are byte strings.
template <typename T>
concept ByteElement = std::same_as<T, char> || std::same_as<T, int8_t> || std::same_as<T, uint8_t>;

class PakOutputStream;

/// A structure: writes its fields, in ascending order of their tags.
template <typename T>
concept WritableRecord = requires(const T& record, PakOutputStream& stream) {
    record.writeTo(stream);
};

/// Writes fields into one buffer, structures within it too. What writes numbers and strings is
/// always inlined: with the tags known, heads become constants, and no call stands between two
/// fields. Raises PakDecodeException for a string above the limit; the buffer then ends somewhere
/// in that field.
class PakOutputStream {
 public:
    [[nodiscard]] std::span<const uint8_t> bytes() const { return writer_.bytes(); }
    [[nodiscard]] size_t length() const { return writer_.length(); }
    void reserve(size_t count) { writer_.reserve(count); }
    /// Begins anew in the same memory.
    void clear() { writer_.clear(); }

    void writeHead(uint8_t type, uint8_t tag) { DataHead{type, tag}.writeTo(writer_); }

    /// Any integer up to signed 64 bits (char, short, int, long), in the smallest form.
    template <std::integral T>
    [[gnu::always_inline]] void write(T value, uint8_t tag) {
        static_assert(std::same_as<T, bool> || std::is_signed_v<T> || sizeof(T) < 8);
        if constexpr (sizeof(T) == 1)
            writeInteger(static_cast<int32_t>(static_cast<Byte<T>>(value)), tag);
        else if constexpr (sizeof(T) < 4 || std::is_signed_v<T>)
            writeInteger(static_cast<std::conditional_t<sizeof(T) == 8, int64_t, int32_t>>(value),
                         tag);
        else
            writeInteger(static_cast<int64_t>(value), tag);
    }

    void write(float value, uint8_t tag) {
        const uint64_t bits = std::bit_cast<uint32_t>(value);
        writer_.advance(DataHead::storeAt(writer_.reserve(8), PAK_TYPE_FLOAT, tag, bits << 32) + 4);
    }
    [[gnu::always_inline]] void write(double value, uint8_t tag) {
        uint8_t* const to = writer_.reserve(10);
        const size_t head = DataHead::storeAt(to, PAK_TYPE_DOUBLE, tag, 0);
        BufferWriter::storeWord(to + head, std::bit_cast<uint64_t>(value));
        writer_.advance(head + 8);
    }

    [[gnu::always_inline]] void write(std::string_view text, uint8_t tag) {
        const uint64_t size = text.size();
        if (size > kMaxStringLength) [[unlikely]]
            raiseLength(size, tag);
        uint8_t* const to = writer_.reserve(size + 8);
        const size_t start = size < 256
                                 ? DataHead::storeAt(to, PAK_TYPE_STRING1, tag, size << 56) + 1
                                 : DataHead::storeAt(to, PAK_TYPE_STRING4, tag, size << 32) + 4;
        BufferWriter::copy(to + start, text.data(), size);
        writer_.advance(start + size);
    }
    [[gnu::always_inline]] void write(const std::string& text, uint8_t tag) {
        write(std::string_view(text), tag);
    }
    void write(const char* text, uint8_t tag) { write(std::string_view(text), tag); }

    template <typename T>
    void write(const std::vector<T>& elements, uint8_t tag) {
        if constexpr (ByteElement<T>) {
            writeHead(PAK_TYPE_SIMPLE_LIST, tag);
            writeHead(PAK_TYPE_INT1, 0);
            writeInteger(static_cast<int64_t>(elements.size()), 0);
            writer_.writeBuf(elements.data(), elements.size());
        } else {
            writeHead(PAK_TYPE_LIST, tag);
            writeInteger(static_cast<int64_t>(elements.size()), 0);
            for (const T& element : elements) write(element, 0);
        }
    }

    template <typename Key, typename Value, typename Order>
    void write(const std::map<Key, Value, Order>& map, uint8_t tag) {
        writeHead(PAK_TYPE_MAP, tag);
        writeInteger(static_cast<int64_t>(map.size()), 0);
        for (const auto& [key, value] : map) {
            write(key, 0);
            write(value, 1);
        }
    }

    template <WritableRecord T>
    void write(const T& record, uint8_t tag) {
        writeHead(PAK_TYPE_STRUCT_S, tag);
        record.writeTo(*this);
        writeHead(PAK_TYPE_STRUCT_E, 0);
    }

 private:
    /// A char counts as signed on every machine.
    template <typename T>
    using Byte = std::conditional_t<std::same_as<T, char>, signed char, T>;

    [[noreturn]] static void raiseLength(size_t length, uint8_t tag);

    /// Each field has its own copy of this, and mostly values of one width, so that the branches
    /// are foreseen.
    template <std::signed_integral T>
    [[gnu::always_inline]] void writeInteger(T value, uint8_t tag) {
        uint8_t* const to = writer_.reserve(10);
        const auto payload = static_cast<uint64_t>(static_cast<int64_t>(value));
        if (value == 0) {
            writer_.advance(DataHead::storeAt(to, PAK_TYPE_ZERO, tag, 0));
        } else if (value == static_cast<int8_t>(value)) {
            store<PAK_TYPE_INT1, 1>(to, payload, tag);
        } else if (value == static_cast<int16_t>(value)) {
            store<PAK_TYPE_INT2, 2>(to, payload, tag);
        } else if (value == static_cast<int32_t>(value)) {
            store<PAK_TYPE_INT4, 4>(to, payload, tag);
        } else {
            const size_t head = DataHead::storeAt(to, PAK_TYPE_INT8, tag, 0);
            BufferWriter::storeWord(to + head, payload);
            writer_.advance(head + 8);
        }
    }

    template <uint8_t Type, size_t Width>
    [[gnu::always_inline]] void store(uint8_t* to, uint64_t value, uint8_t tag) {
        const size_t head = DataHead::storeAt(to, Type, tag, value << (64 - 8 * Width));
        writer_.advance(head + Width);
    }

    BufferWriter writer_;
};

/// The fields of a record as bytes, without a head around.
template <WritableRecord T>
[[nodiscard]] PakData bytesOfRecord(const T& record) {
    PakOutputStream stream;
    record.writeTo(stream);
    const auto bytes = stream.bytes();
    return {bytes.begin(), bytes.end()};
}

}  // namespace analyticspak

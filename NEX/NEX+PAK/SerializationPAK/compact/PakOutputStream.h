#pragma once

#include <array>
#include <bit>
#include <concepts>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "NEX/NEX+PAK/SerializationPAK/compact/BufferWriter.h"
#include "NEX/NEX+PAK/SerializationPAK/compact/DataHead.h"

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

/// Writes fields into one buffer, structures within it too. Raises PakDecodeException for a string
/// above the limit; the buffer then ends somewhere in that field.
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
    void write(T value, uint8_t tag) {
        static_assert(std::same_as<T, bool> || std::is_signed_v<T> || sizeof(T) < 8);
        if constexpr (std::same_as<T, char>)
            writeInteger(static_cast<signed char>(value), tag);
        else
            writeInteger(static_cast<int64_t>(value), tag);
    }

    void write(float value, uint8_t tag) {
        writeHead(PAK_TYPE_FLOAT, tag);
        writer_.advance(static_cast<size_t>(
            pack_32(writer_.reserve(sizeof value), std::bit_cast<int32_t>(value))));
    }
    void write(double value, uint8_t tag) {
        writeHead(PAK_TYPE_DOUBLE, tag);
        writer_.advance(static_cast<size_t>(
            pack_64(writer_.reserve(sizeof value), std::bit_cast<int64_t>(value))));
    }

    void write(std::string_view text, uint8_t tag) {
        // Head and short length lie in the room that also takes the text.
        uint8_t* to = writer_.reserve(text.size() + 6);
        if (text.size() >= 256) {
            checkLength(text.size(), tag);
            writeHead(PAK_TYPE_STRING4, tag);
            to = writer_.reserve(text.size() + 4);
            pack_32(to, static_cast<int32_t>(text.size()));
            std::memcpy(to + 4, text.data(), text.size());
            writer_.advance(text.size() + 4);
            return;
        }
        const size_t head = storeHead(to, PAK_TYPE_STRING1, tag);
        to[head] = static_cast<uint8_t>(text.size());
        if (!text.empty()) std::memcpy(to + head + 1, text.data(), text.size());
        writer_.advance(head + 1 + text.size());
    }
    void write(const std::string& text, uint8_t tag) { write(std::string_view(text), tag); }
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
    static void checkLength(size_t length, uint8_t tag);

    static size_t storeHead(uint8_t* to, uint8_t type, uint8_t tag) {
        if (tag < 15) {
            to[0] = static_cast<uint8_t>(tag << 4 | type);
            return 1;
        }
        to[0] = static_cast<uint8_t>(0xF0 | type);
        to[1] = tag;
        return 2;
    }

    /// The form of an integer by the number of bits that it takes, its sign among them; 0 bits
    /// stand for the value 0.
    struct IntegerForm {
        uint8_t type;
        uint8_t width;
    };
    static constexpr std::array<IntegerForm, 65> kForms = [] {
        std::array<IntegerForm, 65> forms = {};
        for (size_t bits = 0; bits < forms.size(); ++bits)
            forms[bits] = bits == 0    ? IntegerForm{PAK_TYPE_ZERO, 0}
                          : bits <= 8  ? IntegerForm{PAK_TYPE_INT1, 1}
                          : bits <= 16 ? IntegerForm{PAK_TYPE_INT2, 2}
                          : bits <= 32 ? IntegerForm{PAK_TYPE_INT4, 4}
                                       : IntegerForm{PAK_TYPE_INT8, 8};
        return forms;
    }();

    // Without a branch on the value, for the widths of real numbers follow no pattern: eight bytes
    // are stored, as many as the form has are kept.
    void writeInteger(int64_t value, uint8_t tag) {
        const auto magnitude = static_cast<uint64_t>(value ^ (value >> 63));
        const IntegerForm form =
            kForms[static_cast<size_t>(std::bit_width(magnitude)) + (value != 0)];
        uint8_t* const to = writer_.reserve(10);
        const size_t head = storeHead(to, form.type, tag);
        const unsigned shift = (64U - 8U * form.width) & 63U;
        pack_64(to + head, static_cast<int64_t>(static_cast<uint64_t>(value) << shift));
        writer_.advance(head + form.width);
    }

    BufferWriter writer_;
};

}  // namespace analyticspak

#pragma once

#include <algorithm>
#include <bit>
#include <concepts>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "NEX/NEX+PAK/SerializationPAK/PakLimits.h"
#include "NEX/NEX+PAK/SerializationPAK/compact/PakBuffer.h"
#include "NEX/NEX+PAK/SerializationPAK/compact/PakOutputStream.h"

namespace analyticspak {

class PakInputStream;

/// A structure: reads its fields, in ascending order of their tags.
template <typename T>
concept ReadableRecord = requires(T& record, PakInputStream& stream) {
    record.readFrom(stream);
};

/// Reads fields from bytes of any origin. Unknown fields before the wanted one are passed over;
/// nothing is ever looked for behind the cursor. Every failure is a PakDecodeException, and the
/// stream is then of no further use. Structures, lists and maps may be nested 64 levels deep, and
/// take 16 bytes of memory for each byte of the stream (or 64 KiB, if that is more).
///
/// `read` leaves its target alone when the field is absent and not required.
class PakInputStream {
 public:
    explicit PakInputStream(std::span<const uint8_t> bytes)
        : reader_(bytes), budget_(bytes.size()) {}
    /// The bytes must outlive the stream.
    explicit PakInputStream(PakData&& bytes) = delete;
    PakInputStream(const void* bytes, size_t length) : reader_(bytes, length), budget_(length) {}

    [[nodiscard]] const BufferReader& reader() const { return reader_; }

    /// Moves to the field of that tag, over all that lie before it. False when it comes to a higher
    /// tag or the end of the structure first. Bytes that cannot be passed over are reported on
    /// standard output, return false and end the stream: a structure cut short reads as one without
    /// its last fields.
    bool skipToTag(uint8_t tag);
    /// Passes a whole field, or the payload of one of the given type.
    void skipField();
    void skipField(uint8_t type);
    /// Passes all fields up to the end of the structure, and that.
    void skipToStructEnd();

    // Integers of a wider form than the target's are refused, even when the value would fit.
    void read(char& value, uint8_t tag, bool required = true) { readChar(value, tag, required); }
    void read(int8_t& value, uint8_t tag, bool required = true) { readChar(value, tag, required); }
    void read(int16_t& value, uint8_t tag, bool required = true) {
        readInteger<PAK_TYPE_INT2>(value, tag, required);
    }
    void read(int32_t& value, uint8_t tag, bool required = true) {
        readInteger<PAK_TYPE_INT4>(value, tag, required);
    }
    void read(int64_t& value, uint8_t tag, bool required = true) {
        readInteger<PAK_TYPE_INT8>(value, tag, required);
    }
    /// A uint32_t needs the form of a long for its upper half; a number outside of its range is
    /// refused.
    void read(uint32_t& value, uint8_t tag, bool required = true);
    void read(bool& value, uint8_t tag, bool required = true) {
        char stored = value ? 1 : 0;
        readChar(stored, tag, required);
        value = stored != 0;
    }
    void read(float& value, uint8_t tag, bool required = true);
    void read(double& value, uint8_t tag, bool required = true);
    void read(std::string& value, uint8_t tag, bool required = true);

    /// Vectors of char are byte strings, in the raw form or as a list of numbers.
    template <typename T>
    void read(std::vector<T>& elements, uint8_t tag, bool required = true) {
        if constexpr (ByteElement<T>)
            readBytes(elements, tag, required);
        else
            readList(elements, tag, required);
    }

    /// Of two entries with one key the later stays.
    template <typename Key, typename Value, typename Order>
    void read(std::map<Key, Value, Order>& map, uint8_t tag, bool required = true) {
        uint8_t type = 0;
        if (!beginField(tag, required, type)) return;
        if (type != PAK_TYPE_MAP) raiseMismatch("map", tag, type);
        const Nesting level(*this);
        const int32_t size = readCount();
        if (size < 0) raiseMapSize(tag, size);
        map.clear();
        for (int32_t i = 0; i < size; ++i) {
            Key key{};
            read(key, 0);
            // Sorted input, the common one, is appended without a search.
            const size_t before = map.size();
            const auto place = map.try_emplace(map.end(), std::move(key));
            if (map.size() > before)
                spend(sizeof *place + vorla::PakLimits::kMapEntry, "map", tag, size);
            else
                place->second = Value{};
            read(place->second, 1);
        }
    }

    template <ReadableRecord T>
    void read(T& record, uint8_t tag, bool required = true) {
        uint8_t type = 0;
        if (!beginField(tag, required, type)) return;
        if (type != PAK_TYPE_STRUCT_S) raiseMismatch("struct", tag, type);
        const Nesting level(*this);
        record.readFrom(*this);
        skipToStructEnd();
    }

 private:
    /// One level of containers for as long as it lives.
    class Nesting {
     public:
        explicit Nesting(PakInputStream& stream) : stream_(stream) { stream_.enter(); }
        ~Nesting() { --stream_.nesting_; }
        Nesting(const Nesting&) = delete;
        Nesting& operator=(const Nesting&) = delete;

     private:
        PakInputStream& stream_;
    };
    void enter();

    /// Moves over the head of the wanted field. False for an absent one that is not required.
    bool beginField(uint8_t tag, bool required, uint8_t& type) {
        if (findField(tag, type)) return true;
        if (required) raiseMissing(tag);
        return false;
    }
    bool findField(uint8_t tag, uint8_t& type) {
        if (reader_.left() > 0 && tag < 15) [[likely]] {
            const uint8_t head = *reader_.place();
            if (head >> 4 == tag) [[likely]] {
                type = head & 0x0F;
                reader_.skip(1);
                return true;
            }
        }
        return findFieldAhead(tag, type);
    }
    bool findFieldAhead(uint8_t tag, uint8_t& type);

    template <uint8_t Widest, typename T>
    void readInteger(T& value, uint8_t tag, bool required) {
        uint8_t type = 0;
        if (!beginField(tag, required, type)) return;
        if (type <= Widest) [[likely]]
            value = static_cast<T>(bigEndian(type));
        else if (type == PAK_TYPE_ZERO)
            value = 0;
        else
            raiseMismatch(Widest == PAK_TYPE_INT2   ? "Short"
                          : Widest == PAK_TYPE_INT4 ? "Int32"
                                                    : "Int64",
                          tag, type);
    }
    template <typename T>
    void readChar(T& value, uint8_t tag, bool required) {
        uint8_t type = 0;
        if (!findField(tag, type)) {
            if (required) raiseMissingChar(tag);
            return;
        }
        if (type == PAK_TYPE_INT1)
            value = static_cast<T>(bigEndian(type));
        else if (type == PAK_TYPE_ZERO)
            value = 0;
        else
            raiseMismatch("Char", tag, type);
    }

    /// The integer of one of the four integer types at the cursor.
    int64_t bigEndian(uint8_t type) {
        const size_t width = size_t{1} << type;
        int64_t value = 0;
        if (reader_.left() >= sizeof value) [[likely]] {
            unpack_64(reader_.place(), value);
            reader_.skip(width);
            return value >> (64 - 8 * width);
        }
        return bigEndianNearEnd(width);
    }
    int64_t bigEndianNearEnd(size_t width);

    int32_t readCount() {
        int32_t count = 0;
        read(count, 0);
        return count;
    }

    template <ByteElement T>
    void readBytes(std::vector<T>& bytes, uint8_t tag, bool required) {
        uint8_t type = 0;
        if (!beginField(tag, required, type)) return;
        if (type == PAK_TYPE_SIMPLE_LIST) {
            const auto raw = takeSimpleList(tag);
            bytes.assign(raw.begin(), raw.end());
            return;
        }
        if (type != PAK_TYPE_LIST) raiseBytesType(tag, type);
        const int32_t size = readCount();
        if (size < 0) raiseBytesSize(tag, type, size);
        bytes.clear();
        for (int32_t i = 0; i < size; ++i) {
            char element = 0;
            read(element, 0);
            bytes.push_back(static_cast<T>(element));
        }
    }

    template <typename T>
    void readList(std::vector<T>& elements, uint8_t tag, bool required) {
        uint8_t type = 0;
        if (!beginField(tag, required, type)) return;
        if (type != PAK_TYPE_LIST) raiseMismatch("list", tag, type);
        const Nesting level(*this);
        const int32_t size = readCount();
        if (size < 0) raiseListSize(tag, size);
        elements.clear();
        // As many as really follow, or more than can: then the list fails when the bytes end.
        const size_t most = std::min(static_cast<size_t>(size), reader_.left() / kFewestBytes<T>);
        spend(most * sizeof(T), "list", tag, size);
        elements.reserve(most);
        for (int32_t i = 0; i < size; ++i) {
            if constexpr (std::same_as<T, bool>) {
                bool element = false;
                read(element, 0);
                elements.push_back(element);
            } else {
                read(elements.emplace_back(), 0);
            }
        }
    }

    /// The fewest bytes that a field of the type takes, its head among them.
    template <typename T>
    static constexpr size_t kFewestBytes = std::floating_point<T> ? 1 + sizeof(T)
                                           : std::integral<T>     ? 1
                                                                  : 2;

    std::span<const uint8_t> takeSimpleList(uint8_t tag);
    void spend(size_t memory, const char* container, uint8_t tag, int32_t size) {
        if (!budget_.spend(memory)) [[unlikely]]
            raiseBudget(container, tag, size);
    }

    [[noreturn]] static void raiseMissing(uint8_t tag);
    [[noreturn]] static void raiseMissingChar(uint8_t tag);
    [[noreturn]] static void raiseMismatch(const char* wanted, uint8_t tag, uint8_t type);
    [[noreturn]] static void raiseBytesType(uint8_t tag, uint8_t type);
    [[noreturn]] static void raiseBytesSize(uint8_t tag, uint8_t type, int32_t size);
    [[noreturn]] static void raiseMapSize(uint8_t tag, int32_t size);
    [[noreturn]] static void raiseListSize(uint8_t tag, int32_t size);
    [[noreturn]] static void raiseBudget(const char* container, uint8_t tag, int32_t size);

    BufferReader reader_;
    vorla::PakBudget budget_;
    int nesting_ = 0;
};

/// The record whose fields are these bytes, without a head around.
template <ReadableRecord T>
[[nodiscard]] T recordOfBytes(std::span<const uint8_t> bytes) {
    T record{};
    PakInputStream stream(bytes);
    record.readFrom(stream);
    return record;
}

}  // namespace analyticspak

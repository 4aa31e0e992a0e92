#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace vorla {

/// Reads the form described at ArchiveWriter from bytes of any origin, item by item. May run
/// after a fault: takes no memory and no lock, and does not call itself, however deep the input.
/// Maps and lists may also come with their number of elements in front; their `End` is then made
/// up.
///
/// The first thing that is not of that form makes this item and all further ones `Broken`. Texts
/// and byte strings are views of the input.
class ArchiveReader {
 public:
    enum class Kind : uint8_t {
        Broken,
        /// The input ended where it may: outside of all maps and lists.
        Finished,
        Map,
        List,
        /// Closes the innermost map or list.
        End,
        Integer,
        Boolean,
        Text,
        Bytes,
    };
    struct Item {
        Kind kind = Kind::Broken;
        int64_t number = 0;
        std::span<const uint8_t> bytes = {};

        [[nodiscard]] std::string_view text() const {
            return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
        }
    };

    /// More levels than any record has. A limit, so that who follows the nesting by calling itself
    /// is safe.
    static constexpr int deepestNesting = 16;

    explicit ArchiveReader(std::span<const uint8_t> bytes) : bytes_(bytes) {}

    Item next();

    /// The bytes of the value that comes next, containers as a whole, and moves behind it; none at
    /// an end or when it is broken.
    std::optional<std::span<const uint8_t>> takeValue();

    /// How many bytes have been read.
    [[nodiscard]] size_t position() const { return position_; }

    /// Whether the input is exactly one value of the kind, sound to its last byte.
    static bool isWhole(std::span<const uint8_t> bytes, Kind kind);

 private:
    Item broken();
    Item value(uint8_t head);
    Item open(Kind kind, uint64_t items);
    Item close();
    Item string(Kind kind, uint64_t length);
    bool argument(uint8_t information, uint64_t& value);

    std::span<const uint8_t> bytes_;
    size_t position_ = 0;
    int depth_ = 0;
    /// How many more items each open container has; `endless` for one that says when it ends.
    static constexpr uint64_t endless = UINT64_MAX;
    uint64_t left_[deepestNesting] = {};
    bool failed_ = false;
};

}  // namespace vorla

#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <vector>

// The bytes. Stored and sent: never renumber.
//
//   structure  := field*                     ascending tags; the outermost one ends with the buffer
//   field      := head payload
//   head       := one byte, high nibble = tag, low nibble = type       for tags 0 to 14
//               | 0xF0 | type, then the tag as an unsigned byte        for tags 15 to 255
//
//   type          payload (all numbers big-endian)
//    0 INT1         1 byte, signed
//    1 INT2         2 bytes, signed
//    2 INT4         4 bytes, signed
//    3 INT8         8 bytes, signed
//    4 FLOAT        4 bytes, IEEE 754 single
//    5 DOUBLE       8 bytes, IEEE 754 double
//    6 STRING1      1 length byte (unsigned), that many bytes of UTF-8
//    7 STRING4      4 length bytes (unsigned), that many bytes of UTF-8
//    8 MAP          count, then count times: key (a field of tag 0), value (a field of tag 1)
//    9 LIST         count, then count fields of tag 0
//   10 STRUCT_S     the structure's fields (their own tag space), then the byte 0x0B
//   11 STRUCT_E     nothing; closes a structure, always with tag 0
//   12 ZERO         nothing; the integer 0
//   13 SIMPLE_LIST  the byte 0x00 (a head: INT1, tag 0), count, then count raw bytes
//
//   count      := an integer field of tag 0
//
// Integers go out in the smallest of ZERO, INT1, INT2, INT4, INT8 that holds the value; readers
// take any of them. Strings below 256 bytes use STRING1. Floating-point numbers are never
// shortened.
enum PakType : uint8_t {
    PAK_TYPE_INT1 = 0,
    PAK_TYPE_INT2 = 1,
    PAK_TYPE_INT4 = 2,
    PAK_TYPE_INT8 = 3,
    PAK_TYPE_FLOAT = 4,
    PAK_TYPE_DOUBLE = 5,
    PAK_TYPE_STRING1 = 6,
    PAK_TYPE_STRING4 = 7,
    PAK_TYPE_MAP = 8,
    PAK_TYPE_LIST = 9,
    PAK_TYPE_STRUCT_S = 10,
    PAK_TYPE_STRUCT_E = 11,
    PAK_TYPE_ZERO = 12,
    PAK_TYPE_SIMPLE_LIST = 13,
    /// Never in the bytes: what a reader that has not met a head yet says of the last one.
    PAK_TYPE_NONE = 14,
};

/// A byte string.
using PakData = std::vector<uint8_t>;

/// Store a value at a place in big-endian order; the number of bytes stored is returned. The place
/// needs no alignment and must have that many bytes.
inline int pack_8(uint8_t* at, int8_t value) {
    *at = static_cast<uint8_t>(value);
    return 1;
}
inline int pack_16(uint8_t* at, int16_t value) {
    uint16_t bits = static_cast<uint16_t>(value);
    if constexpr (std::endian::native == std::endian::little) bits = __builtin_bswap16(bits);
    std::memcpy(at, &bits, sizeof bits);
    return 2;
}
inline int pack_32(uint8_t* at, int32_t value) {
    uint32_t bits = static_cast<uint32_t>(value);
    if constexpr (std::endian::native == std::endian::little) bits = __builtin_bswap32(bits);
    std::memcpy(at, &bits, sizeof bits);
    return 4;
}
inline int pack_64(uint8_t* at, int64_t value) {
    uint64_t bits = static_cast<uint64_t>(value);
    if constexpr (std::endian::native == std::endian::little) bits = __builtin_bswap64(bits);
    std::memcpy(at, &bits, sizeof bits);
    return 8;
}

/// The mirror functions: take a value from a place, return the number of bytes taken.
inline int unpack_8(const uint8_t* at, int8_t& value) {
    value = static_cast<int8_t>(*at);
    return 1;
}
inline int unpack_16(const uint8_t* at, int16_t& value) {
    uint16_t bits = 0;
    std::memcpy(&bits, at, sizeof bits);
    if constexpr (std::endian::native == std::endian::little) bits = __builtin_bswap16(bits);
    value = static_cast<int16_t>(bits);
    return 2;
}
inline int unpack_32(const uint8_t* at, int32_t& value) {
    uint32_t bits = 0;
    std::memcpy(&bits, at, sizeof bits);
    if constexpr (std::endian::native == std::endian::little) bits = __builtin_bswap32(bits);
    value = static_cast<int32_t>(bits);
    return 4;
}
inline int unpack_64(const uint8_t* at, int64_t& value) {
    uint64_t bits = 0;
    std::memcpy(&bits, at, sizeof bits);
    if constexpr (std::endian::native == std::endian::little) bits = __builtin_bswap64(bits);
    value = static_cast<int64_t>(bits);
    return 8;
}

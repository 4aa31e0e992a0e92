#pragma once

#include <elf.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace vorla::crash {

/// A table of symbols and the texts of their names, in memory.
struct SymbolTable {
    const Elf64_Sym* symbols = nullptr;
    size_t count = 0;
    const char* names = nullptr;
    size_t namesSize = 0;
    /// Where `count` is not known beforehand, for finding it would touch the pages of all images.
    const uint32_t* gnuHash = nullptr;
};

/// One loaded image: the program, a library, the kernel's own one.
struct LoadedImage {
    /// The first address and the number of bytes from there to the end of the last segment.
    uint64_t base = 0;
    uint64_t size = 0;
    /// What is added to the addresses of the image's own tables.
    uint64_t bias = 0;
    /// The loader's name of this load; shows whether something else has taken its place.
    const void* loaderEntry = nullptr;
    std::string_view path;
    std::string_view shortName;
    /// The first 16 bytes of the build id in hexadecimal; zeros where there is none.
    char uuid[33] = "00000000000000000000000000000000";
    bool isProgram = false;
    /// What the image exports, and for the program all that its file has kept.
    SymbolTable exported;
    SymbolTable all;

    [[nodiscard]] bool contains(uint64_t address) const {
        return base <= address && address - base < size;
    }
};

/// Reads the facts of an image from its headers in memory: size, build id and exported symbols.
/// Unreadable ones are left out; false when there are no headers at all. `headers` lie at `address`
/// in the image. May run after a fault.
bool readImageHeaders(std::span<const Elf64_Phdr> headers, LoadedImage& image);

/// The part of a path behind its last "/".
std::string_view lastPathPart(std::string_view path);

/// A symbol, and how far into it an address lies.
struct FoundSymbol {
    std::string_view name;
    uint64_t distance = 0;
};

/// The function of the image that holds the address; its name is empty when none is known. A
/// linear search, for few addresses. May run after a fault, in shielded work.
FoundSymbol findSymbol(const LoadedImage& image, uint64_t address);

}  // namespace vorla::crash

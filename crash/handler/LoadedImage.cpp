#include "crash/handler/LoadedImage.h"

#include <link.h>

#include <algorithm>
#include <cstring>

namespace vorla::crash {
namespace {

constexpr size_t uuidBytes = 16;

void writeUuid(std::span<const uint8_t> buildId, char (&uuid)[33]) {
    constexpr char digits[] = "0123456789abcdef";
    const size_t count = std::min(buildId.size(), uuidBytes);
    for (size_t i = 0; i < count; ++i) {
        uuid[2 * i] = digits[buildId[i] >> 4];
        uuid[2 * i + 1] = digits[buildId[i] & 0xF];
    }
}

/// Finds the build id among the notes of a segment.
void readNotes(std::span<const uint8_t> notes, char (&uuid)[33]) {
    const auto padded = [](size_t size) { return (size + 3) & ~size_t{3}; };
    while (notes.size() >= sizeof(Elf64_Nhdr)) {
        Elf64_Nhdr head;
        std::memcpy(&head, notes.data(), sizeof head);
        const size_t name = sizeof head;
        const size_t description = name + padded(head.n_namesz);
        if (head.n_namesz > notes.size() || head.n_descsz > notes.size() ||
            description + head.n_descsz > notes.size())
            return;
        if (head.n_type == NT_GNU_BUILD_ID && head.n_namesz == 4 &&
            std::memcmp(&notes[name], "GNU", 4) == 0)
            return writeUuid(notes.subspan(description, head.n_descsz), uuid);
        notes = notes.subspan(std::min(notes.size(), description + padded(head.n_descsz)));
    }
}

/// The number of exported symbols is nowhere written: it follows from the end of the longest chain
/// of the hash table.
size_t countByGnuHash(const uint32_t* table) {
    const uint32_t buckets = table[0];
    const uint32_t first = table[1];
    const uint32_t bloomWords = table[2];
    const uint32_t* const bucket = table + 4 + size_t{2} * bloomWords;
    const uint32_t* const chain = bucket + buckets;
    uint32_t last = 0;
    for (uint32_t i = 0; i < buckets; ++i) last = std::max(last, bucket[i]);
    if (last < first) return first;
    while ((chain[last - first] & 1) == 0) ++last;
    return size_t{last} + 1;
}

void readDynamic(const Elf64_Dyn* entry, uint64_t bias, LoadedImage& image) {
    // The loader has added the bias to these addresses, but for the kernel's own image.
    const auto place = [&](uint64_t value) { return value < bias ? value + bias : value; };
    SymbolTable& table = image.exported;
    const uint32_t* hash = nullptr;
    for (; entry->d_tag != DT_NULL; ++entry) {
        const uint64_t value = place(entry->d_un.d_ptr);
        if (entry->d_tag == DT_SYMTAB) table.symbols = reinterpret_cast<const Elf64_Sym*>(value);
        if (entry->d_tag == DT_STRTAB) table.names = reinterpret_cast<const char*>(value);
        if (entry->d_tag == DT_STRSZ) table.namesSize = entry->d_un.d_val;
        if (entry->d_tag == DT_GNU_HASH) table.gnuHash = reinterpret_cast<const uint32_t*>(value);
        if (entry->d_tag == DT_HASH) hash = reinterpret_cast<const uint32_t*>(value);
    }
    if (!table.symbols || !table.names)
        table = {};
    else if (hash)
        table.count = hash[1];
}

void searchTable(const SymbolTable& table, uint64_t wanted, const Elf64_Sym*& best) {
    const size_t count =
        table.count == 0 && table.gnuHash ? countByGnuHash(table.gnuHash) : table.count;
    for (size_t i = 0; i < count; ++i) {
        const Elf64_Sym& symbol = table.symbols[i];
        const auto type = ELF64_ST_TYPE(symbol.st_info);
        if ((type != STT_FUNC && type != STT_GNU_IFUNC) || symbol.st_shndx == SHN_UNDEF) continue;
        if (symbol.st_value > wanted || symbol.st_name >= table.namesSize) continue;
        if (wanted - symbol.st_value >= std::max<uint64_t>(symbol.st_size, 1)) continue;
        if (!best || symbol.st_value > best->st_value) best = &symbol;
    }
}

}  // namespace

bool readImageHeaders(std::span<const Elf64_Phdr> headers, LoadedImage& image) {
    uint64_t low = UINT64_MAX;
    uint64_t high = 0;
    for (const Elf64_Phdr& header : headers) {
        if (header.p_type != PT_LOAD) continue;
        low = std::min(low, header.p_vaddr);
        high = std::max(high, header.p_vaddr + header.p_memsz);
    }
    if (low >= high) return false;
    constexpr uint64_t page = 4096;
    image.base = image.bias + (low & ~(page - 1));
    image.size = image.bias + high - image.base;
    for (const Elf64_Phdr& header : headers) {
        const uint64_t place = image.bias + header.p_vaddr;
        if (header.p_type == PT_NOTE)
            readNotes({reinterpret_cast<const uint8_t*>(place), header.p_memsz}, image.uuid);
        if (header.p_type == PT_DYNAMIC)
            readDynamic(reinterpret_cast<const Elf64_Dyn*>(place), image.bias, image);
    }
    return true;
}

std::string_view lastPathPart(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

FoundSymbol findSymbol(const LoadedImage& image, uint64_t address) {
    const uint64_t wanted = address - image.bias;
    for (const SymbolTable* const table : {&image.all, &image.exported}) {
        const Elf64_Sym* best = nullptr;
        searchTable(*table, wanted, best);
        if (!best) continue;
        const char* const name = table->names + best->st_name;
        return {{name, ::strnlen(name, table->namesSize - best->st_name)}, wanted - best->st_value};
    }
    return {};
}

}  // namespace vorla::crash

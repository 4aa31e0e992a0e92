#include "crash/handler/ImageList.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstring>

#include "crash/handler/FaultShield.h"
#include "platform/base/raii.h"

namespace vorla::crash {
namespace {

constexpr size_t mostLaterImages = 256;

std::string programPath() {
    char path[PATH_MAX];
    const ssize_t length = ::readlink("/proc/self/exe", path, sizeof path);
    return length > 0 ? std::string(path, static_cast<size_t>(length)) : std::string();
}

const void* loaderEntryAt(uint64_t address, uint64_t& base) {
    dl_find_object found;
    if (::_dl_find_object(reinterpret_cast<void*>(address), &found) != 0) return nullptr;
    base = reinterpret_cast<uint64_t>(found.dlfo_map_start);
    return found.dlfo_link_map;
}

/// The file's section headers, when the mapping holds a sound table of them.
std::span<const Elf64_Shdr> sections(std::span<const uint8_t> file) {
    Elf64_Ehdr head;
    if (file.size() < sizeof head) return {};
    std::memcpy(&head, file.data(), sizeof head);
    if (std::memcmp(head.e_ident, ELFMAG, SELFMAG) != 0 || head.e_shoff % 8 != 0 ||
        head.e_shentsize != sizeof(Elf64_Shdr) || head.e_shoff > file.size() ||
        head.e_shnum > (file.size() - head.e_shoff) / sizeof(Elf64_Shdr))
        return {};
    return {reinterpret_cast<const Elf64_Shdr*>(file.data() + head.e_shoff), head.e_shnum};
}

bool liesWithin(const Elf64_Shdr& section, size_t size) {
    return section.sh_offset <= size && section.sh_size <= size - section.sh_offset;
}

}  // namespace

InstalledImages::InstalledImages() {
    const auto add = [](dl_phdr_info* info, size_t, void* self) {
        auto& list = *static_cast<InstalledImages*>(self);
        LoadedImage image;
        image.bias = info->dlpi_addr;
        image.isProgram = list.images_.empty();
        if (readImageHeaders({info->dlpi_phdr, info->dlpi_phnum}, image)) {
            list.paths_.push_back(image.isProgram ? programPath() : info->dlpi_name);
            list.images_.push_back(image);
        }
        return 0;
    };
    ::dl_iterate_phdr(add, this);
    for (size_t i = 0; i < images_.size(); ++i) {
        uint64_t base = 0;
        images_[i].loaderEntry = loaderEntryAt(images_[i].base, base);
        images_[i].path = paths_[i];
        images_[i].shortName = lastPathPart(paths_[i]);
    }
    if (!images_.empty()) mapProgramSymbols(images_.front());
}

InstalledImages::~InstalledImages() {
    if (mapping_) ::munmap(mapping_, mappingSize_);
}

void InstalledImages::mapProgramSymbols(LoadedImage& program) {
    const UniqueFd file(::open("/proc/self/exe", O_RDONLY | O_CLOEXEC));
    struct stat status {};
    if (!file || ::fstat(file.get(), &status) != 0 || status.st_size <= 0) return;
    mappingSize_ = static_cast<size_t>(status.st_size);
    void* const mapping = ::mmap(nullptr, mappingSize_, PROT_READ, MAP_PRIVATE, file.get(), 0);
    if (mapping == MAP_FAILED) return;
    mapping_ = mapping;
    const std::span bytes(static_cast<const uint8_t*>(mapping), mappingSize_);
    const auto all = sections(bytes);
    for (const Elf64_Shdr& section : all) {
        if (section.sh_type != SHT_SYMTAB || section.sh_link >= all.size()) continue;
        const Elf64_Shdr& names = all[section.sh_link];
        if (!liesWithin(section, bytes.size()) || !liesWithin(names, bytes.size()) ||
            section.sh_offset % 8 != 0)
            continue;
        program.all = {reinterpret_cast<const Elf64_Sym*>(bytes.data() + section.sh_offset),
                       section.sh_size / sizeof(Elf64_Sym),
                       reinterpret_cast<const char*>(bytes.data() + names.sh_offset),
                       names.sh_size};
    }
}

ImageList::ImageList(const InstalledImages& installed, Arena& arena)
    : installed_(&installed.images()),
      arena_(&arena),
      room_(arena.takeSpan<LoadedImage>(mostLaterImages)) {}

const LoadedImage& ImageList::at(size_t index) const {
    const size_t installed = installed_->size();
    return index < installed ? (*installed_)[index] : later_[index - installed];
}

const LoadedImage* ImageList::imageAt(uint64_t address) {
    uint64_t base = 0;
    const void* const entry = loaderEntryAt(address, base);
    if (!entry) return nullptr;
    for (size_t i = 0; i < count(); ++i)
        if (at(i).loaderEntry == entry && at(i).contains(address)) return &at(i);
    return add(entry, base);
}

const LoadedImage* ImageList::add(const void* loaderEntry, uint64_t base) {
    if (later_.size() == room_.size()) return nullptr;
    LoadedImage& image = room_[later_.size()];
    image = LoadedImage();
    image.loaderEntry = loaderEntry;
    link_map entry;
    Elf64_Ehdr head;
    char path[PATH_MAX];
    if (!readMemory(reinterpret_cast<uintptr_t>(loaderEntry), entry) || !readMemory(base, head))
        return nullptr;
    image.bias = entry.l_addr;
    const bool read = runShielded([&] {
        const size_t length = ::strnlen(entry.l_name, sizeof path);
        std::memcpy(path, entry.l_name, length);
        image.path = {path, length};
        readImageHeaders({reinterpret_cast<const Elf64_Phdr*>(base + head.e_phoff), head.e_phnum},
                         image);
    });
    if (!read || image.size == 0) return nullptr;
    image.path = arena_->keep(image.path);
    image.shortName = lastPathPart(image.path);
    later_ = room_.first(later_.size() + 1);
    return &image;
}

}  // namespace vorla::crash

#pragma once

#include <string>
#include <vector>

#include "crash/handler/Arena.h"
#include "crash/handler/LoadedImage.h"

namespace vorla::crash {

/// The images that are loaded when the handler is installed, in the loader's order, the program
/// first. Asks the loader under its lock, and so never after a fault.
class InstalledImages {
 public:
    InstalledImages();
    InstalledImages(const InstalledImages&) = delete;
    InstalledImages& operator=(const InstalledImages&) = delete;
    ~InstalledImages();

    [[nodiscard]] const std::vector<LoadedImage>& images() const { return images_; }

 private:
    void mapProgramSymbols(LoadedImage& program);

    std::vector<std::string> paths_;
    std::vector<LoadedImage> images_;
    void* mapping_ = nullptr;
    size_t mappingSize_ = 0;
};

/// Which image an address lies in, for one crash: the installed ones, and those loaded since as far
/// as an address asks for them. May run after a fault.
class ImageList {
 public:
    ImageList(const InstalledImages& installed, Arena& arena);

    /// The image, or null. It stays until the arena is used anew.
    const LoadedImage* imageAt(uint64_t address);

    [[nodiscard]] size_t count() const { return installed_->size() + later_.size(); }
    [[nodiscard]] const LoadedImage& at(size_t index) const;

 private:
    const LoadedImage* add(const void* loaderEntry, uint64_t base);

    const std::vector<LoadedImage>* installed_;
    Arena* arena_;
    std::span<LoadedImage> room_;
    std::span<LoadedImage> later_;
};

}  // namespace vorla::crash

#include "imaging/StringHelpers.h"

#include <QLocale>
#include <array>
#include <utility>

#include "imaging/ImageEncoding.h"
#include "platform/base/files.h"

namespace vorla {
namespace {

// By file type; the seventh entry belongs to a list in the settings and is a PNG as well.
constexpr std::array<const char*, 7> kNameExtensions = {".tiff", ".bmp", ".gif", ".jpg",
                                                        ".png",  ".jp2", ".png"};
constexpr std::array<const char*, 6> kAppendedExtensions = {".tif", ".bmp", ".gif",
                                                            ".jpg", ".png", ".jp2"};

std::string lowerCased(std::string text) {
    for (char& letter : text)
        if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
    return text;
}

std::string lastComponent(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

// Without the dot. A name that only begins with a dot has none.
std::string extensionOf(std::string path) {
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    const std::string name = lastComponent(path);
    const size_t dot = name.rfind('.');
    return dot == std::string::npos || dot == 0 ? "" : name.substr(dot + 1);
}

}  // namespace

std::string imageFileNameForPath(const std::string& path, int defaultImageType,
                                 bool isHighResolution, const std::string& prefix,
                                 const QDateTime& moment) {
    const auto type = static_cast<size_t>(defaultImageType);
    const char* extension = type < kNameExtensions.size() ? kNameExtensions[type] : ".png";
    const QString date = QLocale().toString(moment, QStringLiteral("yyyyMMdd-HHmmss"));
    std::string full = expandTilde(path) + '/' + prefix + date.toStdString();
    if (isHighResolution) full += "@2x";
    return lastComponent(full + extension);
}

int getBitmapImageFileType(const std::string& path) {
    static constexpr std::array<std::pair<const char*, int>, 6> kTypes = {
        {{"png", ImageFileTypePng},
         {"jpg", ImageFileTypeJpeg},
         {"gif", ImageFileTypeGif},
         {"bmp", ImageFileTypeBmp},
         {"tif", ImageFileTypeTiff},
         {"jp2", ImageFileTypeJpeg2000}}};
    const std::string extension = lowerCased(extensionOf(path));
    for (const auto& [name, type] : kTypes)
        if (extension == name) return type;
    return ImageFileTypePng;
}

std::string appendPathExtension(const std::string& path, int fileType) {
    const auto type = static_cast<size_t>(fileType);
    if (type >= kAppendedExtensions.size()) return path;
    const std::string extension = kAppendedExtensions[type];
    const bool hasIt = fileType != ImageFileTypeTiff && lowerCased(path).ends_with(extension);
    return hasIt ? path : path + extension;
}

}  // namespace vorla

#include "theme/ThemeFile.h"

#include <sys/stat.h>

#include <QFile>
#include <QFileInfo>
#include <QPainter>
#include <QSvgRenderer>
#include <algorithm>
#include <nlohmann/json.hpp>
#include <tuple>

#include "platform/base/VLLog.h"
#include "platform/base/jsonObject.h"

namespace vorla {
namespace {

using nlohmann::json;

/// Square points; a drawing that claims more is broken and would only eat memory.
constexpr double largestDrawing = 1 << 21;
/// Bytes of a file, and of a text with its placeholders filled in: each of these may hold others
/// twice, and a few dozen of them would then fill the memory.
constexpr qsizetype longestText = 1 << 20;

QByteArray contents(const std::string& path) {
    QFile file(QFile::decodeName(path.c_str()));
    return file.open(QIODevice::ReadOnly) && file.size() <= longestText ? file.readAll()
                                                                        : QByteArray();
}

/// What changes when a file is written or replaced; the same for every file that is not there.
using FileState = std::tuple<ino_t, off_t, time_t, long>;

FileState stateOf(const std::string& path) {
    struct stat facts = {};
    if (::stat(path.c_str(), &facts) != 0) return {};
    return {facts.st_ino, facts.st_size, facts.st_mtim.tv_sec, facts.st_mtim.tv_nsec};
}

/// Texts by the placeholders that they stand for; of two for one, the first is the one.
using Texts = std::vector<std::pair<QByteArray, QByteArray>>;

void append(const json& names, Texts& texts) {
    if (!names.is_object()) return;
    for (const auto& [name, text] : names.items())
        if (text.is_string())
            texts.emplace_back(QByteArray::fromStdString("@" + name + "@"),
                               QByteArray::fromStdString(text.get<std::string>()));
}

QByteArray filled(QByteArray pattern, const Texts& texts) {
    for (const auto& [name, text] : texts) {
        if (!pattern.contains('@')) break;
        if (pattern.size() + pattern.count(name) * text.size() > longestText) return {};
        pattern.replace(name, text);
    }
    return pattern;
}

std::string pictureFile(const std::string& folder, const std::string& name) {
    for (const char* ending : {"", ".svg", ".png"}) {
        std::string path = folder + "/" + name + ending;
        if (QFileInfo(QFile::decodeName(path.c_str())).isFile()) return path;
    }
    return {};
}

QImage rendered(const QByteArray& svg, double scale) {
    QSvgRenderer drawing(svg);
    if (!drawing.isValid() || drawing.defaultSize().isEmpty()) return {};
    const QSizeF points = drawing.defaultSize();
    if (points.width() * points.height() > largestDrawing) return {};
    QImage image((points * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    drawing.render(&painter);
    painter.end();
    image.setDevicePixelRatio(scale);
    return image;
}

}  // namespace

struct ThemeFile::Layer {
    std::string folder;
    FileState state;
    json values;

    explicit Layer(std::string from) : folder(std::move(from)), state(stateOf(path())) {
        const QByteArray text = contents(path());
        values = jsonObject({text.constData(), static_cast<size_t>(text.size())});
        if (!values.is_discarded()) return;
        if (QFileInfo::exists(QFile::decodeName(path().c_str())))
            VLLogError(
                "the theme file %s is no JSON object, or nested too deep: its look is missing",
                path().c_str());
        values = json::object();
    }
    [[nodiscard]] std::string path() const { return folder + "/themeConfigue.json"; }
};

ThemeFile::ThemeFile(std::string folder) : folder_(std::move(folder)) {
    layers_.emplace_back(folder_);
    const json base = layers_.front().values.value("Base", json());
    if (base.is_string()) {
        const auto& name = base.get_ref<const std::string&>();
        // A sibling, and no way out of the resources.
        if (!name.empty() && name.front() != '.' && name.find('/') == std::string::npos)
            layers_.emplace_back(folder_.substr(0, folder_.rfind('/') + 1) + name);
    }
    for (const Layer& layer : layers_) append(layer.values.value("Palette", json()), palette_);
}

ThemeFile::~ThemeFile() = default;

bool ThemeFile::isCurrent() const {
    return std::ranges::all_of(
        layers_, [](const Layer& layer) { return layer.state == stateOf(layer.path()); });
}

json ThemeFile::value(const std::string& key) const {
    for (const Layer& layer : layers_) {
        const auto found = layer.values.find(key);
        if (found == layer.values.end()) continue;
        json value = *found;
        if (value.is_object())
            for (auto& part : value)
                if (part.is_string())
                    part = filled(QByteArray::fromStdString(part.get<std::string>()), palette_)
                               .toStdString();
        return value;
    }
    return {};
}

QImage ThemeFile::picture(const std::string& name, double scale) const {
    const std::string stem = name.substr(0, name.rfind('#'));
    const std::string variant = stem.size() < name.size() ? name.substr(stem.size() + 1) : "";
    Texts texts;
    for (const Layer& layer : layers_) {
        const json variants = layer.values.value("Variants", json());
        if (variants.is_object()) append(variants.value(variant, json()), texts);
    }
    texts.insert(texts.end(), palette_.begin(), palette_.end());
    for (const Layer& layer : layers_) {
        const std::string path = pictureFile(layer.folder, stem);
        if (path.empty()) continue;
        if (path.ends_with(".svg")) return rendered(filled(contents(path), texts), scale);
        return QImage(QFile::decodeName(path.c_str()));
    }
    return {};
}

}  // namespace vorla

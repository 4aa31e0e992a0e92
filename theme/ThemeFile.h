#pragma once

#include <QByteArray>
#include <QImage>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <utility>
#include <vector>

namespace vorla {

/// What a theme's directory holds: the values of "themeConfigue.json" and the pictures.
///
/// A value file may name another theme of the same place as its "Base": keys and pictures that it
/// lacks then come from there. Colours stand once, in its "Palette"; `@name@` in a colour or in a
/// drawing stands for one of them. A picture's name may end in "#" and one of the file's
/// "Variants", names that go before the palette's: so one drawing serves every state of a button.
class ThemeFile {
 public:
    /// Reads the theme in `folder`. A file that is missing or not a JSON object is a theme without
    /// values; the latter is logged.
    explicit ThemeFile(std::string folder);
    ~ThemeFile();
    ThemeFile(const ThemeFile&) = delete;
    ThemeFile& operator=(const ThemeFile&) = delete;

    [[nodiscard]] const std::string& folder() const { return folder_; }
    /// Whether the value files are still those that were read.
    [[nodiscard]] bool isCurrent() const;

    /// The value of a key with the palette's colours in place; null when there is none.
    [[nodiscard]] nlohmann::json value(const std::string& key) const;
    /// A picture by the name of its file, with or without ".svg" or ".png". Drawings are rendered
    /// with `scale` pixels a point. Null when there is none or it is broken.
    [[nodiscard]] QImage picture(const std::string& name, double scale) const;

 private:
    struct Layer;

    std::string folder_;
    std::vector<Layer> layers_;  ///< the theme's own first, then its base
    std::vector<std::pair<QByteArray, QByteArray>> palette_;
};

}  // namespace vorla

#pragma once

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

namespace vorla {

/// Facts about the framework as it is installed: its resource directory and the information
/// dictionary in it, "Info.json".
///
/// The resource directory is the one that the environment variable VORLA_RESOURCES names, else
/// `../share/VorlaFramework` next to where the library (or the program that it is linked into) was
/// loaded from. Without the file the dictionary is empty and
/// every value reads as absent. Any thread.
class Bundle {
 public:
    static Bundle& framework();

    ~Bundle();
    Bundle(const Bundle&) = delete;
    Bundle& operator=(const Bundle&) = delete;

    /// Directory of the resources, without a trailing slash.
    [[nodiscard]] std::string resourcePath() const;

    /// The path of a resource file, or empty when there is no such file.
    [[nodiscard]] std::string pathForResource(std::string_view name) const;

    /// The path of a program that the framework runs, `libexec/VorlaFramework/<name>` in the
    /// directory that the library was installed in, or empty when there is none.
    [[nodiscard]] static std::string pathForHelper(const std::string& name);

    /// The path of one of the framework's modules, `vorla-1/<name>.so` next to the library (by its
    /// first version number), or empty when there is none.
    [[nodiscard]] static std::string pathForModule(const std::string& name);

    /// A value of the information dictionary as text (numbers in decimal), or empty when absent.
    [[nodiscard]] std::string infoString(std::string_view key) const;
    /// The value as it stands in the dictionary; null when absent.
    [[nodiscard]] nlohmann::json infoValue(std::string_view key) const;

    /// Lays a value over the dictionary for the life of the process: a host product's build differs
    /// from the plain one in such values ("SupplyID", service addresses).
    void setInfoString(std::string_view key, std::string value);

    /// The user-interface text for a key in the user's preferred language; the key itself when
    /// there is none. The tables are `<language>.lproj/Localizable.json`.
    [[nodiscard]] std::string localizedString(std::string_view key) const;

    /// Looks for the resources in another directory from now on, whatever the environment says.
    /// Before the first capture, from hosts that keep them elsewhere.
    void setResourcePath(std::string path);

 private:
    Bundle();
    struct State;
    std::unique_ptr<State> state_;
    template <typename T>
    friend class NoDestructor;
};

/// Who the host is. Any thread.
class HostIdentity {
 public:
    /// The name that users know the host by: what was set, else the program's file name.
    static std::string displayName();
    static void setDisplayName(std::string name);

    /// The program's file name with everything but letters, digits, ".", "-" and "_" replaced by
    /// "_": safe as part of a path, and the same at every start.
    static std::string fileName();
};

/// The first of the user's preferred languages as a language tag, "en" or "zh-Hans" for instance
/// ("en" when the locale says nothing). Read from the LANGUAGE, LC_ALL, LC_MESSAGES and LANG
/// variables in the order that gettext documents.
std::string preferredLanguage();

}  // namespace vorla

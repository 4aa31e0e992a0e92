#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

namespace vorla::test {

/// A fresh folder that is removed with everything in it at the end of the scope.
class TemporaryFolder {
 public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "vorla-test-XXXXXX").string();
        if (!::mkdtemp(name.data())) std::abort();
        path_ = name;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::permissions(path_, std::filesystem::perms::owner_all, ignored);
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] std::string operator/(const std::string& name) const {
        return path_ + "/" + name;
    }

 private:
    std::string path_;
};

}  // namespace vorla::test

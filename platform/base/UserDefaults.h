#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace vorla {

/// The user's persistent preferences for this host: a map from key to value, kept as one JSON
/// object in a file.
///
/// A write takes effect in this object at once and reaches the file with `synchronize`, which
/// merges just the keys written here into what the file holds then, under a lock on a neighbouring
/// file: two processes never lose each other's keys, and a crash leaves the old file or the new
/// one. A read sees what another process has stored since. A file that cannot be parsed counts as
/// empty, and the next write puts it aside with ".broken" added to its name; one that cannot be
/// read or written is logged and left alone, and the values last as long as the process. A process
/// that keeps the lock for longer than a second is not waited for. Any thread.
class UserDefaults {
 public:
    using Scalar = std::variant<bool, int64_t, double, std::string>;
    /// A dictionary read from the file leaves out members of other kinds.
    using Dictionary = std::map<std::string, Scalar, std::less<>>;
    using Value = std::variant<bool, int64_t, double, std::string, Dictionary>;

    /// Preferences in the given file; its directories are made by the first write.
    explicit UserDefaults(std::string path);
    ~UserDefaults();
    UserDefaults(const UserDefaults&) = delete;
    UserDefaults& operator=(const UserDefaults&) = delete;

    /// The host's own: `VorlaFramework/<host name>.json` under the user's configuration directory.
    static UserDefaults& standardUserDefaults();

    [[nodiscard]] std::optional<Value> objectForKey(std::string_view key);
    void setObject(std::string_view key, Value value);
    void removeObjectForKey(std::string_view key);

    /// Writes what was set since the last call. False (and a log line) when the file cannot be
    /// written; the values are then tried again by the next call.
    bool synchronize();

 private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace vorla

#include "settings/plist.h"

#include <cerrno>
#include <cstring>
#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

#include "platform/base/VLLog.h"
#include "platform/base/files.h"

namespace {

using nlohmann::json;

constexpr size_t largestFile = 16 * 1024 * 1024;
constexpr int deepestNesting = 64;

/// Walks through an archive and refuses what is nested too deep: the library's reader calls itself
/// for each level, so a few megabytes of opening brackets would exhaust the stack.
class DepthLimit : public nlohmann::json_sax<json> {
 public:
    bool null() override { return true; }
    bool boolean(bool) override { return true; }
    bool number_integer(number_integer_t) override { return true; }
    bool number_unsigned(number_unsigned_t) override { return true; }
    bool number_float(number_float_t, const string_t&) override { return true; }
    bool string(string_t&) override { return true; }
    bool binary(binary_t&) override { return true; }
    bool key(string_t&) override { return true; }
    bool start_object(std::size_t) override { return ++depth_ <= deepestNesting; }
    bool end_object() override { return --depth_ >= 0; }
    bool start_array(std::size_t) override { return ++depth_ <= deepestNesting; }
    bool end_array() override { return --depth_ >= 0; }
    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override {
        return false;
    }

 private:
    int depth_ = 0;
};

}  // namespace

std::optional<json> dictionaryFromPlist(std::string_view bytes) {
    DepthLimit limit;
    json dictionary(json::value_t::discarded);
    if (json::sax_parse(bytes, &limit, json::input_format_t::cbor))
        dictionary = json::from_cbor(bytes, true, false);
    return dictionary.is_object() ? std::optional(std::move(dictionary)) : std::nullopt;
}

std::optional<json> readFromPlistFile(const std::string& path) {
    const auto bytes = vorla::readFile(path, {.largest = largestFile});
    if (!bytes) {
        if (errno != ENOENT)
            VLLogError("%s exception:%s %s", __func__, path.c_str(), std::strerror(errno));
        return std::nullopt;
    }
    auto dictionary = dictionaryFromPlist(*bytes);
    if (!dictionary) VLLogError("%s exception:%s holds no dictionary", __func__, path.c_str());
    return dictionary;
}

bool writeToPlistFile(const json& dictionary, const std::string& path, mode_t mode) {
    std::string bytes;
    json::to_cbor(dictionary, bytes);
    return vorla::writeFileAtomically(path, bytes, mode);
}

#include "platform/base/jsonObject.h"

#include <nlohmann/json.hpp>

namespace vorla {

using nlohmann::json;

json jsonObject(std::string_view text) {
    constexpr int deepest = 64;
    bool tooDeep = false;
    const auto keep = [&tooDeep](int depth, json::parse_event_t, const json&) {
        tooDeep = tooDeep || depth > deepest;
        return !tooDeep;
    };
    json value = json::parse(text, keep, false);
    return value.is_object() && !tooDeep ? value : json(json::value_t::discarded);
}

}  // namespace vorla

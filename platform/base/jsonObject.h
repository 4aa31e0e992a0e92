#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string_view>

namespace vorla {

/// The JSON object that the text holds, as files do that users and hosts may have written.
/// Discarded for anything else, and for one that is nested more than 64 deep: copying values takes
/// stack for each level. Any thread.
nlohmann::json jsonObject(std::string_view text);

}  // namespace vorla

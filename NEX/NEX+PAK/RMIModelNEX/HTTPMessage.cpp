#include "NEX/NEX+PAK/RMIModelNEX/HTTPMessage.h"

#include <algorithm>

namespace vorla {

std::string asciiLowercase(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return lower;
}

void HTTPRequest::setValue(std::string value, std::string_view forHTTPHeaderField) {
    const std::string wanted = asciiLowercase(forHTTPHeaderField);
    for (auto& [name, present] : headerFields) {
        if (asciiLowercase(name) != wanted) continue;
        present = std::move(value);
        return;
    }
    headerFields.emplace_back(forHTTPHeaderField, std::move(value));
}

std::string HTTPRequest::valueForHTTPHeaderField(std::string_view name) const {
    const std::string wanted = asciiLowercase(name);
    const auto found = std::ranges::find_if(
        headerFields, [&](const auto& field) { return asciiLowercase(field.first) == wanted; });
    return found == headerFields.end() ? std::string() : found->second;
}

}  // namespace vorla

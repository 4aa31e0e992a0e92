#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorla {

/// The text in Latin-1 (ISO 8859-1), or none when a character has no place there or the text is no
/// UTF-8. `most` characters are looked at, the rest is left out.
std::optional<std::vector<uint8_t>> latin1FromUtf8(std::string_view text,
                                                   size_t most = std::string_view::npos);

/// Latin-1 bytes as UTF-8 text; every byte is a character there.
std::string utf8FromLatin1(std::string_view bytes);

/// The length of a UTF-8 text in UTF-16 units. Of other bytes just some number.
size_t utf16Length(std::string_view text);

}  // namespace vorla

#pragma once

#include <string>

namespace vorla::crash {

/// A C++ name as it is written in the source; as it is when it cannot be made so. Takes memory, and
/// stack in proportion to the name: for ordinary code.
std::string demangled(const char* name);

}  // namespace vorla::crash

#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>
#include <vector>

#include "platform/base/raii.h"

namespace vorla {

/// Starts a program of the framework's own with these files as its standard input and output, -1
/// for none, and with none of the process's other files, blocked or ignored signals. Returns 0 or
/// an error number. The caller waits for the child. Any thread.
int startHelper(const std::string& program, const std::vector<std::string>& arguments, int input,
                int output, pid_t& child);

/// A file in memory with these bytes, to be read from its start; none on failure, with errno set.
UniqueFd memoryFile(std::string_view bytes);

}  // namespace vorla

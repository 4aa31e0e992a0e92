#include "crash/handler/Demangled.h"

#include <cxxabi.h>

#include <memory>

#include "platform/base/raii.h"

namespace vorla::crash {

std::string demangled(const char* name) {
    int status = 0;
    const std::unique_ptr<char, FreeDeleter> text(
        abi::__cxa_demangle(name, nullptr, nullptr, &status));
    return status == 0 && text ? text.get() : name;
}

}  // namespace vorla::crash

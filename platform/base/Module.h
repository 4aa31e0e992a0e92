#pragma once

#include <string>

namespace vorla {

/// A function with C linkage from one of the framework's modules, or null, with the reason in the
/// log, where the module is missing, cannot be loaded or belongs to another version.
///
/// Modules hold what is rarely used and would cost every host time at its start. They are the
/// shared objects `vorla-1/<module>.so` next to the library, are loaded at the first call and stay
/// for the life of the process. Any thread, outside of locks; the first call takes milliseconds.
/// Enters the loader, and so never after a fault.
void* moduleFunction(const std::string& module, const char* function);

template <typename Function>
Function* moduleFunction(const std::string& module, const char* function) {
    return reinterpret_cast<Function*>(moduleFunction(module, function));
}

}  // namespace vorla

#pragma once

#include <cxxabi.h>
#include <vorla/vorla.h>

#include <cstddef>
#include <cstring>
#include <exception>
#include <initializer_list>
#include <new>
#include <string>
#include <utility>

// What stands between a C caller and the framework: no exception gets out, no bad argument gets in.

namespace vorla::c {

/// Logs a fault that was not expected; a code of vorla.h.
int internalFault(const char* function, const char* what);

/// The body's result, or the error number of what it threw. The unwinding of a thread that ends is
/// no exception, and goes on.
template <typename Body>
int guarded(const char* function, Body&& body) {
    try {
        return std::forward<Body>(body)();
    } catch (const abi::__forced_unwind&) {
        throw;
    } catch (const std::bad_alloc&) {
        return VORLA_ERROR_NO_MEMORY;
    } catch (const std::exception& exception) {
        return internalFault(function, exception.what());
    } catch (...) {
        return internalFault(function, "an exception of an unknown type");
    }
}

/// Calls the host. What it throws, should it be C++, is dropped: what called us is not prepared.
template <typename Call>
void callHost(const char* function, Call&& call) {
    guarded(function, [&call] {
        std::forward<Call>(call)();
        return int{VORLA_OK};
    });
}

/// Why one of these may not be taken: null, or not UTF-8.
int textError(std::initializer_list<const char*> texts);
/// The same where null is allowed.
int optionalTextError(std::initializer_list<const char*> texts);

/// Copies a text to a caller's buffer as `vorla_get_info` says.
int copyText(const std::string& text, char* buffer, size_t capacity, size_t* length);

/// Why a structure of options cannot be read; `known` is its size here and `alignment` its own.
int optionsError(const void* given, size_t known, size_t alignment);

/// Reads a structure that begins with its size over the defaults in `options`.
template <typename Options>
int readOptions(const Options* given, Options& options) {
    if (const int error = optionsError(given, sizeof(Options), alignof(Options))) return error;
    size_t size = 0;
    std::memcpy(&size, given, sizeof size);
    std::memcpy(&options, given, size < sizeof(Options) ? size : sizeof(Options));
    return VORLA_OK;
}

}  // namespace vorla::c

#pragma once

#include <vorla/export.h>

#include <atomic>

namespace vorla {

/// A library as it is loaded. Its layout stays: another version's code reads it.
struct LibraryCopy {
    const char* name;
    const char* version;
};

/// Whether `self` is the copy of its library that serves the process: the first that asked is. All
/// copies that are loaded share `marker`. The others log it. Any thread.
bool isServingCopy(std::atomic<const LibraryCopy*>& marker, const LibraryCopy& self);

/// The same for this copy of the services library.
bool isServingServices();

}  // namespace vorla

// All copies in a process, of whatever version and however they were loaded, get one and the same
// object of these names from the loader.
inline VL_EXPORT std::atomic<const vorla::LibraryCopy*> VLServicesInProcess = nullptr;
inline VL_EXPORT std::atomic<const vorla::LibraryCopy*> VLCaptureInProcess = nullptr;

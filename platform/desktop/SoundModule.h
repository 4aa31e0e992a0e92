#pragma once

namespace vorla {

/// What the module "sound" does: plays the file and returns at once, but may take long to reach
/// the sound server. `name` says to users what is heard, `application` who plays it.
using PlaySound = void(const char* path, const char* name, const char* application);

}  // namespace vorla

extern "C" [[gnu::visibility("default")]] vorla::PlaySound vorlaPlaySound;

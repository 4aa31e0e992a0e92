#pragma once

#include <string>

namespace vorla {

/// Plays a sound file once at full volume, in the background. Silent when there is no file, no
/// sound server, or the user has muted event sounds. Any thread; returns at once.
void playSoundFile(const std::string& path, const std::string& name);

}  // namespace vorla

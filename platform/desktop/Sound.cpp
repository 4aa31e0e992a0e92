#include "platform/desktop/Sound.h"

#include "platform/base/Bundle.h"
#include "platform/base/DispatchQueue.h"
#include "platform/base/Module.h"
#include "platform/desktop/SoundModule.h"

namespace vorla {

void playSoundFile(const std::string& path, const std::string& name) {
    if (path.empty()) return;
    // Connecting to a sound server can take long, also when there is none.
    DispatchQueue::inBackground([path, name] {
        auto* play = moduleFunction<PlaySound>("sound", "vorlaPlaySound");
        if (play) play(path.c_str(), name.c_str(), HostIdentity::displayName().c_str());
    });
}

}  // namespace vorla

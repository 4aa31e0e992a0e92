#include "platform/desktop/Sound.h"

#include <canberra.h>

#include <memory>
#include <mutex>

#include "platform/base/Bundle.h"
#include "platform/base/DispatchQueue.h"
#include "platform/base/raii.h"

namespace vorla {
namespace {

struct ContextDeleter {
    void operator()(ca_context* context) const { ca_context_destroy(context); }
};

/// One connection to the sound server for the process. Kept to the end: playing goes on after the
/// call, in the library's thread.
struct SoundServer {
    std::mutex mutex;
    std::unique_ptr<ca_context, ContextDeleter> context;
};

}  // namespace

void playSoundFile(const std::string& path, const std::string& name) {
    if (path.empty()) return;
    // Connecting to a sound server can take long, also when there is none.
    DispatchQueue::global().async([path, name] {
        static NoDestructor<SoundServer> server;
        const std::lock_guard lock(server->mutex);
        if (!server->context) {
            ca_context* context = nullptr;
            if (ca_context_create(&context) != CA_SUCCESS) return;
            server->context.reset(context);
            ca_context_change_props(context, CA_PROP_APPLICATION_NAME,
                                    HostIdentity::displayName().c_str(), nullptr);
        }
        ca_context_play(server->context.get(), 0, CA_PROP_MEDIA_FILENAME, path.c_str(),
                        CA_PROP_EVENT_DESCRIPTION, name.c_str(), CA_PROP_CANBERRA_CACHE_CONTROL,
                        "permanent", nullptr);
    });
}

}  // namespace vorla

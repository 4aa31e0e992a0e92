#include <canberra.h>

#include <memory>
#include <mutex>

#include "platform/base/raii.h"
#include "platform/desktop/SoundModule.h"

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

void vorlaPlaySound(const char* path, const char* name, const char* application) {
    static vorla::NoDestructor<SoundServer> server;
    const std::lock_guard lock(server->mutex);
    if (!server->context) {
        ca_context* context = nullptr;
        if (ca_context_create(&context) != CA_SUCCESS) return;
        server->context.reset(context);
        ca_context_change_props(context, CA_PROP_APPLICATION_NAME, application, nullptr);
    }
    ca_context_play(server->context.get(), 0, CA_PROP_MEDIA_FILENAME, path,
                    CA_PROP_EVENT_DESCRIPTION, name, CA_PROP_CANBERRA_CACHE_CONTROL, "permanent",
                    nullptr);
}

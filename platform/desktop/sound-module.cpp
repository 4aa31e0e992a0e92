#include <canberra.h>
#include <dlfcn.h>

#include <cstdarg>
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

/// While it lives, the ALSA library tells nobody of failures on this thread; by default it writes
/// them to standard error, several lines for each attempt on a machine without a sound card. Other
/// threads, and a handler that the host has set for the process, are left as they are.
class QuietAlsa {
 public:
    QuietAlsa() {
        library_ = dlopen("libasound.so.2", RTLD_NOLOAD | RTLD_LAZY);
        if (!library_) return;
        setLocal_ = reinterpret_cast<SetLocal>(dlsym(library_, "snd_lib_error_set_local"));
        if (setLocal_) before_ = setLocal_(ignore);
    }
    ~QuietAlsa() {
        if (setLocal_) setLocal_(before_);
        if (library_) dlclose(library_);
    }
    QuietAlsa(const QuietAlsa&) = delete;
    QuietAlsa& operator=(const QuietAlsa&) = delete;

 private:
    using Handler = void (*)(const char*, int, const char*, int, const char*, va_list);
    using SetLocal = Handler (*)(Handler);

    static void ignore(const char*, int, const char*, int, const char*, va_list) {}

    void* library_ = nullptr;
    SetLocal setLocal_ = nullptr;
    Handler before_ = nullptr;
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
        // Loads the library that does the playing, which else would be loaded only below.
        ca_context_open(context);
    }
    const QuietAlsa quiet;
    ca_context_play(server->context.get(), 0, CA_PROP_MEDIA_FILENAME, path,
                    CA_PROP_EVENT_DESCRIPTION, name, CA_PROP_CANBERRA_CACHE_CONTROL, "permanent",
                    nullptr);
}

// Makes the resolution of names under "hang.test" take half a minute, as a dead name server does,
// in the program that this is linked into. All other names are resolved as ever.
#include <dlfcn.h>
#include <netdb.h>

#include <chrono>
#include <string_view>
#include <thread>

extern "C" [[gnu::visibility("default")]] int getaddrinfo(const char* name, const char* service,
                                                          const addrinfo* hints,
                                                          addrinfo** result) {
    if (name && std::string_view(name).ends_with("hang.test")) {
        std::this_thread::sleep_for(std::chrono::seconds(30));
        return EAI_AGAIN;
    }
    static const auto real =
        reinterpret_cast<decltype(&getaddrinfo)>(::dlsym(RTLD_NEXT, "getaddrinfo"));
    return real(name, service, hints, result);
}

#include <atomic>

#include "NEX/NEX/HTTPModule.h"
#include "platform/base/Module.h"

namespace vorla {

const HTTPLibrary* httpLibrary() {
    static std::atomic<const HTTPLibrary*> loaded = nullptr;
    if (const HTTPLibrary* library = loaded) return library;
    auto* get = moduleFunction<GetHTTPLibrary>("http", "vorlaHTTPLibrary");
    if (get) loaded = get();
    return loaded;
}

}  // namespace vorla

#include "platform/base/Module.h"

#include <dlfcn.h>

#include <cstring>
#include <memory>

#include "platform/base/Bundle.h"
#include "platform/base/VLLog.h"

namespace vorla {
namespace {

struct ModuleCloser {
    void operator()(void* module) const { ::dlclose(module); }
};

}  // namespace

void* moduleFunction(const std::string& module, const char* function) {
    const std::string path = Bundle::pathForModule(module);
    if (path.empty()) {
        VLLogError("module %s.so is not installed beside the library", module.c_str());
        return nullptr;
    }
    // Never unloaded: threads of what it stands on may be at work when the host exits.
    const std::unique_ptr<void, ModuleCloser> opened(
        ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE));
    const char* error = opened ? nullptr : ::dlerror();
    const auto* version =
        opened ? static_cast<const char*>(::dlsym(opened.get(), "vorlaModuleVersion")) : nullptr;
    // A host that runs through an update still has the old library.
    if (version && std::strcmp(version, VORLA_VERSION) != 0) error = "of another version";
    void* found = version && !error ? ::dlsym(opened.get(), function) : nullptr;
    if (!found)
        VLLogError("module %s cannot be used: %s", path.c_str(), error ? error : "not ours");
    return found;
}

}  // namespace vorla

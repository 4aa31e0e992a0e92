#include "crash/CvrNSExpHandler.h"

#include <cxxabi.h>
#include <dlfcn.h>

#include <array>
#include <cstring>
#include <exception>
#include <string>

#include "crash/CvrLog.h"
#include "crash/CvrSigHandler.h"
#include "crash/handler/Demangled.h"
#include "crash/handler/NotedException.h"
#include "crash/handler/StackWalker.h"

namespace {

std::terminate_handler oldhandler = nullptr;

/// What the exception has to say; its text may be anything, but it ends somewhere.
std::string reasonOfPresentException() {
    constexpr size_t longest = 4096;
    try {
        throw;
    } catch (const std::exception& exception) {
        const char* const text = exception.what();
        return text ? std::string(text, ::strnlen(text, longest)) : std::string();
    } catch (const char* text) {
        return text ? std::string(text, ::strnlen(text, longest)) : std::string();
    } catch (const std::string& text) {
        return text.substr(0, longest);
    } catch (...) {
        return {};
    }
}

/// The part of the stack behind the runtime's own functions: it starts where the throw is.
std::span<const vorla::crash::StackEntry> fromTheThrow(
    std::span<const vorla::crash::StackEntry> stack) {
    for (size_t i = 0; i < stack.size(); ++i) {
        Dl_info function{};
        const auto* const place = reinterpret_cast<const void*>(stack[i].address - 1);
        if (::dladdr(place, &function) == 0 || !function.dli_sname) continue;
        const std::string_view name = function.dli_sname;
        if (name == "__cxa_throw" || name == "__cxa_rethrow" ||
            name == "_ZSt17rethrow_exceptionNSt15__exception_ptr13exception_ptrE")
            return stack.subspan(i + 1);
    }
    return stack;
}

void cvr_objc_uncaught_handler() {
    std::array<vorla::crash::StackEntry, vorla::crash::mostFrames> stack;
    const size_t count = vorla::crash::walkOwnStack(stack);
    if (const std::type_info* const type = abi::__cxa_current_exception_type()) {
        const std::string name = vorla::crash::demangled(type->name());
        const std::string reason = reasonOfPresentException();
        CvrLogInfo("<INFO> CVR: Catch uncaught exception:\n\n%s %s \n %zu frames\n", name.c_str(),
                   reason.c_str(), count);
        vorla::crash::noteException(name, reason, fromTheThrow(std::span(stack).first(count)));
    }
    if (CvrNSExpHandler::sharedInstance().isSignalHandlerCheckEnable())
        CvrSigHandler::sharedInstance().reset();
    if (!oldhandler) std::abort();
    if (oldhandler != __gnu_cxx::__verbose_terminate_handler)
        CvrLogWarn(
            "<WARN> CVR: Note: there is another uncaught exception handler in the project, "
            "please check it!");
    oldhandler();
    // A terminate handler must not return.
    std::abort();
}

}  // namespace

CvrNSExpHandler& CvrNSExpHandler::sharedInstance() {
    static vorla::NoDestructor<CvrNSExpHandler> instance;
    return *instance;
}

void CvrNSExpHandler::enableHandler(bool enable) {
    handlerEnable_ = enable;
}

bool CvrNSExpHandler::enableSignalHandlerCheck(bool enable) {
    return signalHandlerResetable_ = enable;
}

bool CvrNSExpHandler::isSignalHandlerCheckEnable() const {
    return signalHandlerResetable_;
}

void CvrNSExpHandler::install() {
    const std::terminate_handler present = std::get_terminate();
    if (present != cvr_objc_uncaught_handler) oldhandler = present;
    if (handlerEnable_)
        std::set_terminate(cvr_objc_uncaught_handler);
    else
        CvrLogWarn("<WARN> CVR: NSException handler disable");
}

void CvrNSExpHandler::uninstall() {
    vorla::crash::removeTerminateHandler();
}

bool CvrNSExpHandler::checkHandler() {
    if (std::get_terminate() == cvr_objc_uncaught_handler) return true;
    CvrLogWarn("<WARN> CVR: &&&&&& sdk NSException handler is overwrited");
    return false;
}

namespace vorla::crash {

void removeTerminateHandler() {
    if (oldhandler) std::set_terminate(oldhandler);
}

}  // namespace vorla::crash

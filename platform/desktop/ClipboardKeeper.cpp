#include "platform/desktop/ClipboardKeeper.h"

#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <QClipboard>
#include <QGuiApplication>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/Bundle.h"
#include "platform/base/DispatchQueue.h"
#include "platform/base/HelperProgram.h"
#include "platform/base/VLLog.h"

namespace vorla {
namespace {

xcb_window_t selectionOwner(xcb_connection_t* connection, std::string_view name) {
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> atom(
        xcb_intern_atom_reply(
            connection,
            xcb_intern_atom(connection, 0, static_cast<uint16_t>(name.size()), name.data()),
            nullptr),
        &std::free);
    if (!atom) return XCB_NONE;
    const std::unique_ptr<xcb_get_selection_owner_reply_t, decltype(&std::free)> reply(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, atom->atom),
                                      nullptr),
        &std::free);
    return reply ? reply->owner : XCB_NONE;
}

const QNativeInterface::QX11Application* x11Application() {
    return qApp ? qApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
}

void startKeeper(const QByteArray& png, xcb_window_t owner, const char* when) {
    const std::string program = Bundle::pathForHelper("clipboard-keeper");
    if (program.empty()) {
        VLLogError("there is no clipboard-keeper: the clipboard is empty when this program ends");
        return;
    }
    const UniqueFd file = memoryFile({png.constData(), static_cast<size_t>(png.size())});
    pid_t child = 0;
    std::vector<std::string> arguments = {std::to_string(owner)};
    if (when) arguments.emplace_back(when);
    const int error = file ? startHelper(program, arguments, file.get(), -1, child) : errno;
    if (error != 0) {
        VLLogError("the clipboard-keeper does not start: %s", std::strerror(error));
        return;
    }
    // It goes to the background by itself; what was started ends at once.
    DispatchQueue::inBackground([child] {
        while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) continue;
    });
}

}  // namespace

void keepPictureOnClipboard(const QByteArray& png) {
    const auto* x11 = x11Application();
    if (!x11 || selectionOwner(x11->connection(), "CLIPBOARD_MANAGER") != XCB_NONE) return;
    const xcb_window_t owner = selectionOwner(x11->connection(), "CLIPBOARD");
    if (owner != XCB_NONE) startKeeper(png, owner, nullptr);
}

void givePictureAway(const QByteArray& png) {
    const auto* x11 = x11Application();
    if (!x11 || !QGuiApplication::clipboard()->ownsClipboard()) return;
    startKeeper(png, selectionOwner(x11->connection(), "CLIPBOARD"), "now");
}

}  // namespace vorla

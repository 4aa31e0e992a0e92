#include "platform/desktop/ClipboardKeeper.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <QGuiApplication>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "platform/base/Bundle.h"
#include "platform/base/DispatchQueue.h"
#include "platform/base/VLLog.h"
#include "platform/base/raii.h"

extern char** environ;

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

/// A file in memory with these bytes; none on failure, with errno set.
UniqueFd memoryFile(const QByteArray& bytes) {
    UniqueFd file(::memfd_create("vorla-clipboard", MFD_CLOEXEC));
    for (qsizetype at = 0; file && at < bytes.size();) {
        const ssize_t count =
            ::write(file.get(), bytes.constData() + at, static_cast<size_t>(bytes.size() - at));
        if (count > 0)
            at += count;
        else if (errno != EINTR)
            return UniqueFd();
    }
    return file;
}

/// Starts the program with `input` as its standard input and nothing of ours beyond it; returns 0
/// or an error number.
int start(const std::string& program, const std::string& argument, int input, pid_t& child) {
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, input, STDIN_FILENO);
    for (const int output : {STDOUT_FILENO, STDERR_FILENO})
        posix_spawn_file_actions_addopen(&files, output, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addclosefrom_np(&files, STDERR_FILENO + 1);
    // A host may block or ignore signals that must be able to end the keeper.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t none, all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &all);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    std::string name = program, owner = argument;
    char* arguments[] = {name.data(), owner.data(), nullptr};
    const int error =
        ::posix_spawn(&child, program.c_str(), &files, &attributes, arguments, environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    return error;
}

}  // namespace

void keepPictureOnClipboard(const QByteArray& png) {
    const auto* x11 = qApp ? qApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    if (!x11 || selectionOwner(x11->connection(), "CLIPBOARD_MANAGER") != XCB_NONE) return;
    const xcb_window_t owner = selectionOwner(x11->connection(), "CLIPBOARD");
    if (owner == XCB_NONE) return;
    const std::string program = Bundle::pathForHelper("clipboard-keeper");
    if (program.empty()) {
        VLLogError("there is no clipboard-keeper: the clipboard is empty when this program ends");
        return;
    }
    const UniqueFd file = memoryFile(png);
    pid_t child = 0;
    const int error = file ? start(program, std::to_string(owner), file.get(), child) : errno;
    if (error != 0) {
        VLLogError("the clipboard-keeper does not start: %s", std::strerror(error));
        return;
    }
    // It goes to the background by itself; what was started ends at once.
    DispatchQueue::global().async([child] {
        while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) continue;
    });
}

}  // namespace vorla

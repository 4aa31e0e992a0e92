#include "SingleInstance.h"

#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>
#include <cerrno>
#include <cstring>

#include <QCryptographicHash>
#include <QSocketNotifier>
#include <QStandardPaths>
#include <algorithm>

namespace {

constexpr const char* taken = "taken";
constexpr timeval patience{3, 0};

/// A name without a place in the file system: it goes with the process that holds it.
QByteArray socketName() {
    const QByteArray display = qgetenv("DISPLAY").split('.').first();
    const QString config = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    const QByteArray place =
        QCryptographicHash::hash(display + '\n' + config.toUtf8(), QCryptographicHash::Sha256);
    return "vorla-host-" + QByteArray::number(::getuid()) + '-' + place.toHex().left(16);
}

sockaddr_un addressOf(const QByteArray& name, socklen_t& length) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const auto size =
        std::min<size_t>(static_cast<size_t>(name.size()), sizeof address.sun_path - 1);
    std::memcpy(address.sun_path + 1, name.constData(), size);
    length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + size);
    return address;
}

/// The name is open to everybody on the machine.
bool isOfThisUser(int socket) {
    ucred peer{};
    socklen_t length = sizeof peer;
    return ::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &length) == 0 &&
           peer.uid == ::getuid();
}

bool waitForAnswer(int socket) {
    char answer[16];
    ::setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    const ssize_t got = ::recv(socket, answer, sizeof answer, 0);
    return got > 0 && QByteArray(answer, static_cast<qsizetype>(got)) == taken;
}

}  // namespace

SingleInstance::~SingleInstance() {
    if (socket_ >= 0) ::close(socket_);
}

std::optional<bool> SingleInstance::passOn(const QByteArray& wish) {
    const int socket = ::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    if (socket < 0) return std::nullopt;
    socklen_t length = 0;
    const sockaddr_un address = addressOf(socketName(), length);
    std::optional<bool> result;
    if (::connect(socket, reinterpret_cast<const sockaddr*>(&address), length) == 0 &&
        isOfThisUser(socket))
        result = ::send(socket, wish.constData(), static_cast<size_t>(wish.size()), MSG_NOSIGNAL) ==
                     wish.size() &&
                 waitForAnswer(socket);
    ::close(socket);
    return result;
}

bool SingleInstance::become(std::function<void(const QByteArray& wish)> obey) {
    const int socket = ::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (socket < 0) return false;
    socklen_t length = 0;
    const sockaddr_un address = addressOf(socketName(), length);
    if (::bind(socket, reinterpret_cast<const sockaddr*>(&address), length) != 0 ||
        ::listen(socket, 8) != 0) {
        ::close(socket);
        return false;
    }
    obey_ = std::move(obey);
    socket_ = socket;
    auto* notifier = new QSocketNotifier(socket, QSocketNotifier::Read, this);
    QObject::connect(notifier, &QSocketNotifier::activated, this, [this] { accept(); });
    return true;
}

void SingleInstance::accept() {
    const int peer = ::accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (peer < 0) return;
    if (!isOfThisUser(peer)) {
        ::close(peer);
        return;
    }
    auto* notifier = new QSocketNotifier(peer, QSocketNotifier::Read, this);
    QObject::connect(notifier, &QSocketNotifier::activated, this, [this, notifier, peer] {
        char wish[64];
        const ssize_t got = ::recv(peer, wish, sizeof wish, 0);
        if (got < 0 && errno == EAGAIN) return;
        // Whoever has given up waiting has informed the user.
        const bool awaited = got > 0 && ::send(peer, taken, std::strlen(taken), MSG_NOSIGNAL) > 0;
        notifier->setEnabled(false);
        notifier->deleteLater();
        ::close(peer);
        if (awaited) obey_(QByteArray(wish, static_cast<qsizetype>(got)));
    });
}

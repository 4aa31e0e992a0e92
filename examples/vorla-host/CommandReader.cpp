#include "CommandReader.h"

#include <unistd.h>
#include <cerrno>

CommandReader::CommandReader(std::function<void(const QByteArray& line)> obey)
    : obey_(std::move(obey)), notifier_(STDIN_FILENO, QSocketNotifier::Read) {
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { read(); });
}

void CommandReader::read() {
    char buffer[256];
    const ssize_t got = ::read(STDIN_FILENO, buffer, sizeof buffer);
    if (got < 0 && (errno == EINTR || errno == EAGAIN)) return;
    if (got <= 0) {
        notifier_.setEnabled(false);
        obey_("quit");
        return;
    }
    pending_.append(buffer, static_cast<qsizetype>(got));
    for (qsizetype end; (end = pending_.indexOf('\n')) >= 0;) {
        const QByteArray line = pending_.left(end).trimmed();
        pending_.remove(0, end + 1);
        obey_(line);
    }
}

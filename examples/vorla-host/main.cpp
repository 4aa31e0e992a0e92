// A small complete program that embeds the framework. It is also how tests and benchmarks drive it
// from outside: everything it hears is printed, one JSON object a line.

#include <unistd.h>
#include <cstdio>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <optional>
#include <variant>

#include "Events.h"
#include "HostIcon.h"
#include "HostOptions.h"
#include "Program.h"
#include "SingleInstance.h"
#include "Translation.h"

namespace {

constexpr int code(ExitStatus status) {
    return static_cast<int>(status);
}

/// Puts every per-user file under one directory.
void useStateDirectory(const QString& directory) {
    const QByteArray root = QFile::encodeName(QDir(directory).absolutePath());
    qputenv("XDG_CONFIG_HOME", root + "/config");
    qputenv("XDG_DATA_HOME", root + "/data");
    qputenv("XDG_STATE_HOME", root + "/state");
    qputenv("XDG_CACHE_HOME", root + "/cache");
}

/// Without a display the toolkit aborts, after many words.
void endWithoutDisplay(QtMsgType type, const QMessageLogContext& /*context*/,
                       const QString& /*message*/) {
    if (type != QtFatalMsg) return;
    std::fprintf(stderr, "vorla-host: no display answers (DISPLAY is \"%s\")\n",
                 qgetenv("DISPLAY").constData());
    ::_exit(code(ExitStatus::NotStarted));
}

QByteArray wishOf(const HostOptions& options) {
    if (!options.capture) return "show";
    return "capture " + QByteArray::number(static_cast<qint64>(options.delay.count()));
}

/// Leaves the wish of this start to the program that runs already, if there is one.
std::optional<ExitStatus> passOn(const HostOptions& options) {
    const auto taken = SingleInstance::passOn(wishOf(options));
    if (!taken) return std::nullopt;
    if (*taken) return ExitStatus::Delivered;
    std::fputs("vorla-host: the running program does not answer\n", stderr);
    return ExitStatus::NotStarted;
}

int run(const HostOptions& options) {
    Program program(options);
    SingleInstance instance;
    const auto obey = [&program](const QByteArray& wish) { program.obeyLaterStart(wish); };
    if (options.shared && !instance.become(obey)) {
        // Another start was faster.
        if (const auto status = passOn(options)) return code(*status);
    }
    program.start();
    return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
    QStringList arguments;
    for (int i = 0; i < argc; ++i) arguments.append(QString::fromLocal8Bit(argv[i]));
    const auto parsed = HostOptions::parse(arguments);
    if (const auto* status = std::get_if<ExitStatus>(&parsed)) return code(*status);
    const HostOptions& options = std::get<HostOptions>(parsed);
    if (options.outFile == u"-") reportToStandardError();
    if (!options.stateDir.isEmpty()) useStateDirectory(options.stateDir);

    if (options.shared) {
        if (const auto status = passOn(options)) return code(*status);
    }
    const auto previous = qInstallMessageHandler(endWithoutDisplay);
    QApplication application(argc, argv);
    qInstallMessageHandler(previous);
    QApplication::setDesktopFileName(QStringLiteral("vorla-host"));
    installTranslation();
    QApplication::setQuitOnLastWindowClosed(false);
    if (!options.once) QApplication::setWindowIcon(hostIcon());
    return run(options);
}

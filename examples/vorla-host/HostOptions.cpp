#include "HostOptions.h"

#include <QCommandLineParser>
#include <algorithm>
#include <cstdio>

#include <vorla/VLCapture.h>

namespace {

constexpr double longestDelay = 3600.0;

void addOptions(QCommandLineParser& parser) {
    parser.setApplicationDescription(
        "Captures windows and regions of the screen. Without options it opens its window and stays "
        "in the tray.\nPrints what it hears as one JSON object a line.");
    parser.addOptions({
        {{"h", "help"}, "Show this help and exit."},
        {{"v", "version"}, "Show the version and exit."},
        {"once", "Start a capture at launch, exit after the session."},
        {"capture", "Have the running program start a capture; else start it, and one in it."},
        {"delay", "Wait <seconds> before the capture.", "seconds"},
        {"out",
         "Write the delivered picture to <file>; - is standard output, and the events then go to "
         "standard error.",
         "file"},
        {"show-switch", "Offer the switch to the recorder."},
        {"silent-save", "Save to the last place without asking."},
        {"commands",
         "Obey the lines of standard input: capture, cancel, state, dialog (opens a modal one), "
         "quit. Its end quits."},
        {"background", "Show no window of its own."},
        {"supply-id", "Be the host product <number>; chooses the theme.", "number"},
        {"state-dir", "Keep all settings and files under <dir>.", "dir"},
        {"stat-url", "Send the usage statistics to <url>.", "url"},
        {"crash-url", "Send crash reports to <url>.", "url"},
        {"crash", "Die in the way of <kind>; \"list\" lists them.", "kind"},
        {"crash-when", "Die after that event: ready (the default) or panels.", "event"},
    });
}

bool refuse(const QString& reason) {
    std::fprintf(stderr, "vorla-host: %s\n", qPrintable(reason));
    return false;
}

void printCrashKinds(FILE* stream) {
    for (const CrashKind& known : crashKinds())
        std::fprintf(stream, "%-20s%s\n", known.name.data(), known.what.data());
}

bool readCrash(const QCommandLineParser& parser, HostOptions& options) {
    const QString when = parser.value("crash-when");
    options.crashWhenPanels = when == u"panels";
    if (!when.isEmpty() && when != u"ready" && when != u"panels")
        return refuse("unknown event: " + when);
    if (!parser.isSet("crash")) return true;
    const QString kind = parser.value("crash");
    options.crash = crashKind(kind.toStdString());
    if (options.crash) return true;
    refuse("unknown kind: " + kind);
    printCrashKinds(stderr);
    return false;
}

bool readDelay(const QCommandLineParser& parser, HostOptions& options) {
    if (!parser.isSet("delay")) return true;
    if (!options.once && !options.capture) return refuse("--delay needs --once or --capture");
    bool isNumber = false;
    const double seconds = parser.value("delay").toDouble(&isNumber);
    if (!isNumber || !(seconds >= 0.0 && seconds <= longestDelay))
        return refuse("--delay needs a number of seconds from 0 to 3600");
    options.delay = std::chrono::milliseconds(qRound(seconds * 1000.0));
    return true;
}

bool readAll(const QCommandLineParser& parser, HostOptions& options) {
    if (!parser.positionalArguments().isEmpty())
        return refuse("unexpected argument: " + parser.positionalArguments().first());
    options.once = parser.isSet("once");
    options.capture = parser.isSet("capture");
    options.showSwitch = parser.isSet("show-switch");
    options.silentSave = parser.isSet("silent-save");
    options.commands = parser.isSet("commands");
    options.background = parser.isSet("background");
    options.outFile = parser.value("out");
    options.supplyID = parser.value("supply-id");
    options.stateDir = parser.value("state-dir");
    options.statURL = parser.value("stat-url");
    options.crashURL = parser.value("crash-url");
    const QStringList names = parser.optionNames();
    options.shared = std::all_of(names.begin(), names.end(), [](const QString& name) {
        return name == u"capture" || name == u"delay" || name == u"state-dir";
    });
    if (options.once && options.capture) return refuse("--once and --capture exclude each other");
    if (parser.isSet("out") && options.outFile.isEmpty()) return refuse("--out needs a file");
    return readDelay(parser, options) && readCrash(parser, options);
}

}  // namespace

std::variant<HostOptions, ExitStatus> HostOptions::parse(const QStringList& arguments) {
    QCommandLineParser parser;
    addOptions(parser);
    if (!parser.parse(arguments)) {
        refuse(parser.errorText());
        return ExitStatus::BadArguments;
    }
    if (parser.isSet("help")) {
        // There is no application object yet that would know its name.
        std::fputs(qPrintable(parser.helpText().replace("<executable_name>", "vorla-host")),
                   stdout);
        return ExitStatus::Delivered;
    }
    if (parser.isSet("version")) {
        std::printf("vorla-host %s\n", VorlaFrameworkVersionString);
        return ExitStatus::Delivered;
    }
    if (parser.value("crash") == u"list") {
        printCrashKinds(stdout);
        return ExitStatus::Delivered;
    }
    HostOptions options;
    if (!readAll(parser, options)) return ExitStatus::BadArguments;
    return options;
}

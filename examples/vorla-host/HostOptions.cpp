#include "HostOptions.h"

#include <QCommandLineParser>
#include <cstdio>

namespace {

bool readCrash(const QCommandLineParser& parser, HostOptions& options) {
    const std::string when = parser.value("crash-when").toStdString();
    options.crashWhenPanels = when == "panels";
    if (!when.empty() && when != "ready" && when != "panels") {
        std::fprintf(stderr, "unknown event: %s\n", when.c_str());
        return false;
    }
    if (!parser.isSet("crash")) return true;
    const std::string kind = parser.value("crash").toStdString();
    options.crash = crashKind(kind);
    if (options.crash) return true;
    std::fprintf(stderr, "%s\n", kind == "list" ? "" : ("unknown kind: " + kind).c_str());
    for (const CrashKind& known : crashKinds())
        std::fprintf(stderr, "%-20s%s\n", known.name.data(), known.what.data());
    return false;
}

}  // namespace

std::optional<HostOptions> HostOptions::parse(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        "Sample host of the capture framework. Prints what it hears as one JSON object a line.");
    const QCommandLineOption help = parser.addHelpOption();
    parser.addOptions({
        {"once", "Start a capture at launch, exit after the session."},
        {"out", "Write the delivered PNG to <file>.", "file"},
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
    const bool understood = parser.parse(arguments);
    if (!understood) std::fprintf(stderr, "%s\n", qPrintable(parser.errorText()));
    if (understood && parser.isSet(help)) std::fputs(qPrintable(parser.helpText()), stdout);
    if (!understood || parser.isSet(help)) return std::nullopt;
    HostOptions options;
    options.once = parser.isSet("once");
    options.showSwitch = parser.isSet("show-switch");
    options.silentSave = parser.isSet("silent-save");
    options.commands = parser.isSet("commands");
    options.background = parser.isSet("background");
    options.outFile = parser.value("out");
    options.supplyID = parser.value("supply-id");
    options.stateDir = parser.value("state-dir");
    options.statURL = parser.value("stat-url");
    options.crashURL = parser.value("crash-url");
    if (!readCrash(parser, options)) return std::nullopt;
    return options;
}

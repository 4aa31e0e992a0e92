#pragma once

#include <QString>
#include <QStringList>
#include <chrono>
#include <variant>

#include "CrashKinds.h"

/// What the program's end says. Scripts know the numbers: never renumber.
enum class ExitStatus : int {
    Delivered = 0,
    Cancelled = 1,
    BadArguments = 2,
    NotStarted = 3,
    NotWritten = 4,
    Switched = 5,
};

/// What the command line asks of the sample host.
struct HostOptions {
    bool once = false;
    bool capture = false;
    bool showSwitch = false;
    bool silentSave = false;
    bool commands = false;
    bool background = false;
    /// "-" stands for standard output.
    QString outFile;
    QString supplyID;
    QString stateDir;
    QString statURL;
    QString crashURL;
    std::chrono::milliseconds delay{0};
    /// The way to die, or null, and whether to do so only when the panels are up.
    const CrashKind* crash = nullptr;
    bool crashWhenPanels = false;
    /// Whether this start may be left to an instance that runs already: it asks for nothing that
    /// one could not do.
    bool shared = true;

    /// Reads the arguments. A status to end with after --help and --version, and, with a message on
    /// standard error, when they make no sense.
    static std::variant<HostOptions, ExitStatus> parse(const QStringList& arguments);
};

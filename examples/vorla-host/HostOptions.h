#pragma once

#include <QString>
#include <QStringList>
#include <optional>

#include "CrashKinds.h"

/// What the command line asks of the sample host.
struct HostOptions {
    bool once = false;
    bool showSwitch = false;
    bool silentSave = false;
    bool commands = false;
    bool background = false;
    QString outFile;
    QString supplyID;
    QString stateDir;
    QString statURL;
    QString crashURL;
    /// The way to die, or null, and whether to do so only when the panels are up.
    const CrashKind* crash = nullptr;
    bool crashWhenPanels = false;

    /// Reads the arguments. Nothing (with a message on standard error) when they make no sense, and
    /// after --help.
    static std::optional<HostOptions> parse(const QStringList& arguments);
};

#pragma once

#include <QImage>
#include <QJsonObject>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestProgram.h"

namespace vorla::test {

/// A running vorla-host that obeys commands, in a process and with settings of its own.
class HostProgram {
 public:
    /// `prefix` is put before the host's command line, e.g. {"/usr/bin/env", "QT_SCALE_FACTOR=2"}.
    explicit HostProgram(const std::vector<std::string>& options = {"--background"},
                         const std::vector<std::string>& prefix = {});

    /// Whether the host's main loop runs.
    bool start() { return hear("ready", 20000).has_value(); }
    /// Starts a session; the number of panels that came up, 0 when they did not.
    int capture();
    /// Sends a command and waits until the host has dealt with it and all before it.
    bool obey(std::string_view command);
    void send(std::string_view command) { program_.send(command); }
    bool isCapturing();

    /// Waits for an event of this name; what came before it is dropped.
    std::optional<QJsonObject> hear(std::string_view event, int milliseconds = 5000);
    /// The names of all events that come until the host answers; separated by blanks.
    std::string heardUntilNow();

    /// Waits for the delivery and returns the picture; null when nothing is delivered.
    QImage delivered(int milliseconds = 10000);
    /// A file in the folder that the host keeps its things in.
    [[nodiscard]] std::string path(const std::string& name) const { return folder_ / name; }

    /// What it wrote to standard error.
    [[nodiscard]] std::string log() const;
    [[nodiscard]] int pid() const { return program_.pid(); }
    TestProgram& program() { return program_; }

 private:
    TemporaryFolder folder_;
    TestProgram program_;
};

/// A program of the build, by name.
std::string builtProgram(const std::string& name);

}  // namespace vorla::test

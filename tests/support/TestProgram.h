#pragma once

#include <xcb/xcb.h>

#include <string>
#include <string_view>
#include <vector>

#include "tests/support/PipedProgram.h"

namespace vorla::test {

/// Open file descriptors of a process, and its shared memory: System V segments that it made plus
/// mappings of anonymous shared files. -1 when the process cannot be looked at.
int fileDescriptorsOf(int pid);
int sharedMemorySegmentsOf(int pid);

/// A running vorla-test-client (or another program that speaks its lines); ends with the object.
class TestProgram : public PipedProgram {
 public:
    /// Starts it, with standard input and output connected. `path` empty stands for the test
    /// client, `errorFile` empty for this program's own standard error.
    explicit TestProgram(const std::vector<std::string>& arguments, const std::string& path = {},
                         const std::string& errorFile = {});

    /// Waits for a line that begins with `prefix`, and stores the rest of it; lines before it are
    /// dropped. False when none came in time.
    bool waitForLine(std::string_view prefix, std::string* rest = nullptr, int milliseconds = 5000);
    /// Writes a line to its standard input; false when it does not take it.
    bool send(std::string_view line);
    /// Ends its standard input and waits for it to end: the exit code, or minus the signal that
    /// ended it; -1000 (and killed) when it has not ended in time.
    int waitForExit(int milliseconds = 5000);
    /// Waits for the window to be up and painted; 0 when that does not happen.
    xcb_window_t waitUntilReady();
    /// Stops (hangs) the program; `resume` lets it go on.
    void suspend();
    void resume() const { kill(SIGCONT); }
};

}  // namespace vorla::test

#pragma once

#include <vorla/export.h>

// Usage statistics: counters by event number, kept in a file and sent once per process where the
// information dictionary names an address (VLInfo.h). Any thread; nothing here waits or throws.

/// Sends what earlier processes counted, in the background, and begins to count. `VLPrepareCapture`
/// and the first capture do this by themselves; programs that only count call it at launch. Takes
/// effect once per process.
VL_EXPORT void VLStartStatistics();

/// Counts a usage event of the host's own. Numbers 1000 to 1999 are the framework's.
VL_EXPORT void VLStatEvent(int event);

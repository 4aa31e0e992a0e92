#pragma once

#include <vorla/export.h>

/// @file
/// Usage statistics: counters by event number, kept in a file and sent once per process where the
/// information dictionary names an address (VLInfo.h). An event rewrites the file, which is small.
/// Any thread; nothing here throws, or waits for the network.

/// The events that the framework counts, and the facts that go out with the counters. The numbers
/// are stored and sent: never renumber. docs/statistics.md lists when each of them is counted.
enum VLStatEventNumber : int {
    VLStatEventToolRectangle = 1000,
    VLStatEventToolEllipse = 1001,
    VLStatEventToolArrow = 1002,
    VLStatEventToolPen = 1003,
    VLStatEventToolText = 1004,
    VLStatEventToolMosaic = 1005,
    VLStatEventToolTag = 1006,
    VLStatEventUndo = 1007,
    VLStatEventSave = 1008,
    VLStatEventFinish = 1009,
    VLStatEventCancel = 1010,
    VLStatEventEscape = 1011,
    VLStatEventRightButton = 1012,
    VLStatEventDoubleClick = 1013,
    VLStatEventReturn = 1014,
    VLStatEventStart = 1017,
    VLStatEventIntroduction = 1026,
    VLStatEventSwitch = 1027,

    // Facts, made anew for each upload and never counted.
    VLStatFactRunAlone = 1018,
    VLStatFactPlaySound = 1019,
    VLStatFactHighResolution = 1020,
    VLStatFactMachine = 1021,
    VLStatFactVersion = 1022,
    VLStatFactChannel = 1023,
};

/// Sends what earlier processes counted, in the background, and begins to count. `VLPrepareCapture`
/// and the first capture do this by themselves; programs that only count call it at launch. Takes
/// effect once per process.
VL_EXPORT void VLStartStatistics();

/// Counts a usage event of the host's own. Numbers 1000 to 1999 are the framework's.
VL_EXPORT void VLStatEvent(int event);

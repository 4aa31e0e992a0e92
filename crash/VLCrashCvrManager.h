#pragma once

/// Starts crash reporting for the capture component.
class VLCrashCvrManager {
 public:
    /// Takes effect once in a process. Any thread; does not wait for disk or network.
    static void startCrashReport();
};

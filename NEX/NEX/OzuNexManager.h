#pragma once

/// Starts the usage statistics.
class OzuNexManager {
 public:
    static OzuNexManager& defaultManager();

    OzuNexManager(const OzuNexManager&) = delete;
    OzuNexManager& operator=(const OzuNexManager&) = delete;

    /// Connects the statistics to the events of the capture path, and uploads the counters in the
    /// background. Takes effect once in a process, whatever becomes of the upload. Without an
    /// address for it nothing is sent, and no thread started. Any thread; does not block.
    void startStat();

 private:
    OzuNexManager() = default;
};

#pragma once

#include <vorla/CrashReporter.h>

#include <mutex>
#include <string>
#include <vector>

#include "crash/CvrCrashListener.h"
#include "crash/CvrPreparedCrash.h"
#include "platform/base/raii.h"

/// Turns what the signal and exception handlers found into a stored record. Any thread.
class CvrCrashHandler {
 public:
    static CvrCrashHandler& sharedInstance();

    CvrCrashHandler(const CvrCrashHandler&) = delete;
    CvrCrashHandler& operator=(const CvrCrashHandler&) = delete;

    /// Publishes a copy of the state that a crash from now on works with. A crash before the first
    /// call leaves no files.
    void prepare(const CvrPreparedCrash& state);

    /// Signals first, exceptions second; the other way round.
    void installHandler();
    void uninstallHandler();

    /// Appends the listener, which must live as long as the process; null is ignored. There is room
    /// for eight.
    void registCrashListerner(CvrCrashListener* listener);

    /// The host's wish on merging repeated crashes into one record; it wins over the strategy's.
    void setExpMergeUpload(bool merge);
    void setExpMergeStrategy(bool merge);
    [[nodiscard]] bool isExpMergeUpload() const;

    /// A flag that nothing acts on.
    void setUserMachHandler(bool enable) { userMachHandler_ = enable; }
    [[nodiscard]] bool userMachHandler() const { return userMachHandler_; }

    /// Text that goes along with each crash; its first 10,240 characters are kept.
    void setAttachLog(const std::string& text);
    [[nodiscard]] std::string attachLog() const;

    /// Whether a crash leaves "last_crash_reported" behind; true at first.
    void setEnableLastCloseRecord(bool enable);
    /// Crashes with such a text in a module name of their stack are not stored.
    void setExcludeShortNames(const std::vector<std::string>& names);
    /// When there are any, only crashes with one of them in a module name are stored.
    void setIncludeShortNames(const std::vector<std::string>& names);

 private:
    CvrCrashHandler() = default;
    template <typename T>
    friend class vorla::NoDestructor;

    mutable std::mutex mutex_;
    bool userMachHandler_ = false;
    bool userSetMerge_ = false;
    bool mergeExp_ = false;
    bool serverMerge_ = false;
};

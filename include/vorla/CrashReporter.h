#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <string>
#include <vector>

#include <vorla/export.h>

/// @file
/// Reports of the host's death.

/// Called in the dying program once the record of its crash is on disk; null at first. It runs on
/// the faulting thread, on the alternate stack: it should do little, may do anything, and is ended
/// by a guard when it takes too long.
extern "C" VL_EXPORT void (*exp_call_back_func)();

/// The face of crash reporting to the host: catches the program's death, keeps a report of it on
/// disk and sends it at the next start, to the address that the information dictionary names under
/// "CrashSyncURL"; without one nothing is sent.
///
/// Any thread, but not in a signal handler. Nothing here waits for the network.
class VL_EXPORT CrashReporter {
 public:
    /// The one of this process. Lives as long as it does.
    static CrashReporter& sharedInstance();

    CrashReporter(const CrashReporter&) = delete;
    CrashReporter& operator=(const CrashReporter&) = delete;

    /// Starts crash reporting. `appKey` names the application to the server. Returns whether this
    /// call did it: not for a key without any letters, nor when it was started before.
    bool installWithAppkey(const std::string& appKey);
    /// Whether it is started.
    [[nodiscard]] bool isInstalled() const;
    /// Takes the handlers away again.
    void uninstall();

    /// @name To be called before installWithAppkey
    /// @{

    /// Keeps all files in another folder, which is made when missing and must neither be a link nor
    /// writable for others.
    void resetDBPath(const std::string& path);
    /// Whether to note uncaught C++ exceptions; true at first.
    void enableNSExceptionReporter(bool enable);
    /// Whether to catch fatal signals; true at first.
    void enableSignalErrorReporter(bool enable);
    /// Whether frames of the program itself are given names in the report; true at first.
    void setEnableSymbolicateInProcess(bool enable);
    /// Whether repeated crashes are merged into one record. Wins over what the server wants.
    void setExpMergeUpload(bool merge);
    /// Crashes that have one of these texts in the name of a module on their stack are not kept. An
    /// empty list, as at first, excludes none. Always true.
    bool setExcludeShortName(const std::vector<std::string>& names);
    /// Only crashes that have one of these texts in the name of a module on their stack are kept.
    /// An empty list, as at first, stands for all. Always true.
    bool setIncludeShortName(const std::vector<std::string>& names);
    /// Whether a crash counts for `isLastCloseByCrash` of the next start. Always true.
    bool setLastCloseByIncludExclued(bool enable);
    /// Whether an uncaught exception first takes the signals back from another party.
    void enableSignalHandlerCheckable(bool enable);
    /// Without effect: this system has no such handlers.
    void setUserMachHandler(bool enable);
    /// @}

    /// @name What reports say
    /// From the call on; also before installWithAppkey. Texts are UTF-8, and empty ones change
    /// nothing.
    /// @{

    /// Which host this is, for the server; at first the program's own identifier.
    void setBundleId(const std::string& bundleId);
    /// The host's version; at first that of its information dictionary. When it is another than
    /// that of the last run, the crashes of that run are dropped.
    void setBundleVer(const std::string& version);
    /// Who uses the host. Another user than before is told to the server.
    void setUserId(const std::string& userId);
    /// What stands for this device; at first a random identifier that is kept. Another one than
    /// before is told to the server.
    void setDeviceId(const std::string& deviceId);
    /// Through which channel the host is distributed.
    void setChannel(const std::string& channel);
    /// What led to a crash, for the report: the last 100 events of up to 200 characters.
    void addSessionEvent(const std::string& event);
    /// A value that goes along with each report, in place of an earlier one of that key.
    void setUserData(const std::string& key, const std::string& value);
    /// The number of the scene, any that the host gives to what it is doing; 0 at first.
    void setScene(uint64_t scene);
    /// A value of the scene: at most 15 of up to 200 characters, under keys of up to 50 letters and
    /// digits.
    void addSceneValue(const std::string& value, const std::string& forKey);
    /// A text that goes along with each crash; 10,240 characters of it are kept.
    void setAttachLog(const std::string& text);
    /// @}

    /// Whether the log says what happens; it is silent at first, but for a few lines.
    void enableLog(bool enable);

    /// Whether the previous run ended by a crash.
    bool isLastCloseByCrash();
    /// Whether there is a crash to send. Looks at the disk.
    bool expExist();
    /// Has a crash sent if there is one.
    bool checkAndUpload();
    /// How many crashes are stored. Looks at the disk.
    [[nodiscard]] size_t storedCrashCount() const;

    /// Record something that the program has survived like a crash, with the stacks of all threads
    /// and a message of the host; nothing is thrown. Each other thread is held still for less than
    /// a millisecond.
    void reportException(const std::exception& exception, const std::string& message);
    /// The same for an error that is no exception. Empty `callStack` stands for the calling
    /// thread's stack, empty `threadScenes` for those of all threads.
    void reportError(const std::string& error, const std::string& reason,
                     const std::string& callStack, const std::string& threadScenes);

    /// @name The crash under way
    /// For `exp_call_back_func`; else the latest recorded error. Empty texts when there is none.
    /// @{

    /// The signal, or the exception's type with the signal.
    [[nodiscard]] std::string getCrashType() const;
    /// What the exception says, or the name of the signal's code.
    [[nodiscard]] std::string getCurrentException() const;
    /// The frames of the crash, one a line.
    [[nodiscard]] std::string getCrashStack() const;
    /// The whole report; empty for a recorded error.
    [[nodiscard]] std::string getCrashLog() const;
    /// @}

    /// Whether the handlers of signals are in place; if another party has replaced one, the log
    /// says so.
    bool checkSignalHandler();
    /// The same for uncaught exceptions.
    bool checkNSExceptionHandler();

    /// The version of crash reporting, which the reports carry; not the framework's.
    [[nodiscard]] std::string sdkVersion() const;
    /// What stands for this device in reports: what was set, or the identifier that is kept; empty
    /// when neither is there yet.
    [[nodiscard]] std::string deviceIdentifier() const;

    /// The program becomes the one in use: for hosts without windows of the toolkit; others need
    /// not say so. The first in a day asks the server for its strategy.
    void applicationWillBecomeActive();
    /// The program ceases to be the one in use.
    void applicationWillResignActive();

    /// @name Not implemented here
    /// They take no part in reporting.
    /// @{

    /// Logs that there is no such thing here.
    void reportUnityExceptionWithName(const std::string& name, const std::string& reason,
                                      const std::string& stack);
    /// Logs the error, and reports nothing.
    void reportError(const std::string& error, const std::string& log);
    /// Does nothing.
    void enableBlockMonitor(bool enable, bool autoReport);
    /// Does nothing.
    void startBlockMonitor();
    /// Does nothing.
    void stopBlockMonitor();
    /// Always false.
    bool checkBlockDataExistAndReport();
    /// @}

    /// @name For trying it out
    /// These end the program.
    /// @{

    /// By an exception, if nobody catches it.
    void testThrowNSException();
    /// By a fault of memory.
    void testThrowCxxError();
    /// @}

 private:
    CrashReporter() = default;
    ~CrashReporter() = default;
};

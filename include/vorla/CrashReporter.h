#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <string>
#include <vector>

#include <vorla/export.h>

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
    /// Whether to catch uncaught C++ exceptions, and fatal signals; both at first.
    void enableNSExceptionReporter(bool enable);
    void enableSignalErrorReporter(bool enable);
    /// Whether frames of the program itself are given names in the report; true at first.
    void setEnableSymbolicateInProcess(bool enable);
    /// Whether repeated crashes are merged into one record. Wins over what the server wants.
    void setExpMergeUpload(bool merge);
    /// A crash is kept only if a module on its stack has one of the included texts in its name, and
    /// none has one of the excluded. An empty list stands for no such condition. Always true.
    bool setExcludeShortName(const std::vector<std::string>& names);
    bool setIncludeShortName(const std::vector<std::string>& names);
    /// Whether a crash counts for `isLastCloseByCrash` of the next start. Always true.
    bool setLastCloseByIncludExclued(bool enable);
    /// Whether an uncaught exception first takes the signals back from another party.
    void enableSignalHandlerCheckable(bool enable);
    void setUserMachHandler(bool enable);
    /// @}

    /// @name What reports say
    /// Empty texts change nothing.
    /// @{

    void setBundleId(const std::string& bundleId);
    void setBundleVer(const std::string& version);
    void setUserId(const std::string& userId);
    void setDeviceId(const std::string& deviceId);
    void setChannel(const std::string& channel);
    /// What led to a crash, for the report: the last 100 events of up to 200 characters.
    void addSessionEvent(const std::string& event);
    void setUserData(const std::string& key, const std::string& value);
    void setScene(uint64_t scene);
    /// At most 15 values of up to 200 characters; keys of up to 50 letters and digits.
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

    [[nodiscard]] std::string getCrashType() const;
    /// What the exception says, or the name of the signal's code.
    [[nodiscard]] std::string getCurrentException() const;
    [[nodiscard]] std::string getCrashStack() const;
    /// The whole report; empty for a recorded error.
    [[nodiscard]] std::string getCrashLog() const;
    /// @}

    /// Whether the handlers are in place.
    bool checkSignalHandler();
    bool checkNSExceptionHandler();

    [[nodiscard]] std::string sdkVersion() const;
    [[nodiscard]] std::string deviceIdentifier() const;

    /// For a host without a user interface of ours: that it becomes the program in use, or ceases
    /// to be. Others need not say so.
    void applicationWillBecomeActive();
    void applicationWillResignActive();

    /// @name Not implemented here
    /// They log, do nothing, or return false.
    /// @{

    void reportUnityExceptionWithName(const std::string& name, const std::string& reason,
                                      const std::string& stack);
    void reportError(const std::string& error, const std::string& log);
    void enableBlockMonitor(bool enable, bool autoReport);
    void startBlockMonitor();
    void stopBlockMonitor();
    bool checkBlockDataExistAndReport();
    /// @}

    /// @name For trying it out
    /// These end the program.
    /// @{

    void testThrowNSException();
    void testThrowCxxError();
    /// @}

 private:
    CrashReporter() = default;
    ~CrashReporter() = default;
};

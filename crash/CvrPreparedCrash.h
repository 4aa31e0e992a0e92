#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

// What the module hands to the crash handler, and what the handler leaves on disk.
//
// Between the fault and the end of the process nothing may be allocated and no lock waited for, so
// whatever a report says about the program is put together beforehand: the module fills a
// CvrPreparedCrash and calls `CvrCrashHandler::prepare` before `installHandler`, and again whenever
// one of its values has changed (user, device, strategy, resume, a key that was persisted, a user
// record that was added). `prepare` copies, is cheap, and may be called on any thread at any time.
// What the host adds (session events, user data, scenes) goes to CvrCrashData, the attached text
// and the lists of modules to CvrCrashHandler; both publish it to the handler by themselves.
//
// Files are in the form described at ArchiveWriter. The handler writes each under a temporary name
// and puts it in place by rename:
//
//   keyValueFile    `keyValueFileBytes` with "last_crash_time" (integer, ms) and, when
//                   `enableLastCloseRecord`, "last_crash_reported" (true) added
//   .crash_%@.data  one CvrExpObj; a file that is there already is not replaced: "-1", "-2"... are
//                   put behind the seconds
//   crashMetaFile   as it is on disk then, with the entry of this crash added
//   userInfoFile    `userInfoFileBytes`, when there are any
//
// While it changes a file the handler holds an exclusive flock on `lockFile`; it waits for it at
// most 50 ms. A child of a fork, which has the handler but not the file's present state, writes
// only its record and its entry of the index.

/// What has been prepared for a crash that may come. All texts are UTF-8.
struct CvrPreparedCrash {
    /// The store's folder, and full paths of files in it. An empty path is never written.
    std::string folder;
    std::string keyValueFile;
    std::string crashMetaFile;
    std::string userInfoFile;
    std::string lockFile;

    /// The key-value file as it is to be written: one map.
    std::string keyValueFileBytes;
    /// The user-info file as it is to be written; empty when the file on disk is up to date.
    std::string userInfoFileBytes;

    /// The facts of CvrModelBase that the report and the record name.
    std::string appId, appVersion, bundleId, hardwareModel, osVer, userid, openudid, sdkVersion,
        sessionId, pIdentity, processName, parentProcName, resourcePath;
    int64_t parentProcId = 0;
    int64_t startTime = 0, backGroundTime = 0, resumeTime = 0, lastRecordTime = 0;
    int64_t serverTimeDelta = 0;

    /// The entries of a record's `valueMap` that are known beforehand: "A1", "A2", "A4", "A5",
    /// "A13", "A17", "A23", "A24", "productIdentify", "tavim". The handler adds "A8" to "A11",
    /// "A31" to "A34" and "A36", and the host's scenes and attached text.
    std::vector<std::pair<std::string, std::string>> valueMap;
};

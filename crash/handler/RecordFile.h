#pragma once

#include "crash/archive/ArchiveWriter.h"
#include "crash/handler/FaultFolder.h"
#include "crash/handler/MachineFacts.h"
#include "crash/handler/ReportText.h"
#include "crash/handler/SessionState.h"

namespace vorla::crash {

/// All that the record of a crash consists of.
struct CrashFacts {
    const CrashEvent* event = nullptr;
    const CollectedCrash* crash = nullptr;
    const CvrPreparedCrash* prepared = nullptr;
    const LocalTime* localTime = nullptr;
    std::string_view log;
    std::string_view callStack;
    /// The last of the session's events: what the handler itself has to say.
    std::string_view handlerEvent;
    std::string_view hash;
    std::string_view expUid;
    /// The hash of the record that this one takes the place of, and its file's name.
    std::string_view replacedHash, replacedFile;
    MachineFacts machine;

    /// The crash's time by the server's clock.
    [[nodiscard]] int64_t cashTime() const { return event->time + prepared->serverTimeDelta; }
};

/// Keeps a crash on disk. May run after a fault.
class RecordFile {
 public:
    RecordFile(const CrashFacts& facts, const FaultFolder& folder, Arena& arena)
        : facts_(&facts), folder_(&folder), arena_(&arena) {
        if (!facts.replacedFile.empty()) fileName_.text(facts.replacedFile).text({"", 1});
    }

    /// The first traces of a crash: its time, and that there was one.
    void markCrash();
    /// Writes the record, or adds the crash to one of the same hash when `merge` says so, and then
    /// the index. A second call replaces what the first one wrote, unless that was merged.
    bool save(bool merge);
    /// Writes the user records that were not on disk yet.
    void saveUserInfo();
    /// The record's file, once it is saved and was not merged.
    [[nodiscard]] std::string_view fileName() const {
        return merged_ || fileName_.length() == 0
                   ? std::string_view()
                   : fileName_.view().substr(0, fileName_.length() - 1);
    }

 private:
    bool writeNew();
    bool writeMerged(std::string_view meta);
    bool addToIndex(int64_t time, bool hasNew, bool uplaoded);
    void writeRecord(ArchiveWriter& writer);
    void writeImages(ArchiveWriter& writer);
    void writeImage(const LoadedImage& image, ArchiveWriter& writer);
    void writeLogAttachment(ArchiveWriter& writer);
    void writeValues(ArchiveWriter& writer);
    void writeHostValues(ArchiveWriter& writer);
    void writeSession(ArchiveWriter& writer);
    void mergeAttachments(std::span<const uint8_t> old, ArchiveWriter& writer);
    [[nodiscard]] std::span<const uint8_t> readIndex();
    [[nodiscard]] const SessionState& session() const { return sessionState(); }

    const CrashFacts* facts_;
    const FaultFolder* folder_;
    Arena* arena_;
    /// Ends with a zero once the record has a name.
    ShortText<64> fileName_;
    bool merged_ = false;
};

/// MD5 (RFC 1321) over the texts, as 32 capital hexadecimal digits. May run after a fault.
void writeHash(std::span<const std::string_view> texts, char (&hash)[32]);

}  // namespace vorla::crash

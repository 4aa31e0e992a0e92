#include "crash/handler/RecordFile.h"

// What is deprecated about the plain functions is that no provider stands behind them. Those that
// do ask a provider take memory and locks.
#define OPENSSL_SUPPRESS_DEPRECATED
#include <md5.h>
#include <unistd.h>

#include <cerrno>

#include "crash/handler/ArchiveFields.h"

namespace vorla::crash {
namespace {

constexpr size_t largestIndex = size_t{1} << 20;

void millionths(ArchiveWriter& writer, std::string_view name, int64_t value) {
    ShortText<32> text;
    const int64_t magnitude = value < 0 ? -value : value;
    text.text(value < 0 ? "-" : "").decimal(magnitude / 1'000'000).text(".");
    text.digits(magnitude % 1'000'000, 6);
    field(writer, name, text.view());
}

void whole(ArchiveWriter& writer, std::string_view name, int64_t value) {
    ShortText<32> text;
    text.decimal(value).text(".000000");
    field(writer, name, text.view());
}

void plain(ArchiveWriter& writer, std::string_view name, int64_t value) {
    ShortText<32> text;
    field(writer, name, text.decimal(value).view());
}

bool isForeground(const CvrPreparedCrash& prepared) {
    return prepared.backGroundTime == 0 ||
           (prepared.resumeTime > prepared.backGroundTime && prepared.resumeTime > 0);
}

/// A path's last part as a C string, which it is anyway.
const char* nameOf(const std::string& path) {
    return lastPathPart(path).data();
}

}  // namespace

void RecordFile::markCrash() {
    const CvrPreparedCrash& prepared = *facts_->prepared;
    if (prepared.keyValueFile.empty()) return;
    NewFile file(folder_->get(), *arena_);
    ArchiveWriter writer(NewFile::sink, &file);
    const std::string& known = prepared.keyValueFileBytes;
    const std::span map(reinterpret_cast<const uint8_t*>(known.data()), known.size());
    const auto keep = [](auto, auto) { return false; };
    if (map.empty())
        writer.beginMap();
    else if (!copyMap(map, file, keep))
        return;
    if (facts_->event->time > 0) number(writer, "last_crash_time", facts_->event->time);
    if (session().enableLastCloseRecord) {
        writer.text("last_crash_reported");
        writer.boolean(true);
    }
    writer.end();
    file.commit(nameOf(prepared.keyValueFile), NewFile::Existing::Replace);
}

void RecordFile::saveUserInfo() {
    const CvrPreparedCrash& prepared = *facts_->prepared;
    if (prepared.userInfoFile.empty() || prepared.userInfoFileBytes.empty()) return;
    NewFile file(folder_->get(), *arena_);
    file.write(prepared.userInfoFileBytes.data(), prepared.userInfoFileBytes.size());
    file.commit(nameOf(prepared.userInfoFile), NewFile::Existing::Replace);
}

std::span<const uint8_t> RecordFile::readIndex() {
    return folder_->read(nameOf(facts_->prepared->crashMetaFile), largestIndex, *arena_);
}

bool RecordFile::save(bool merge) {
    if (merged_) return true;
    if (merge && fileName_.length() == 0) {
        std::string_view meta;
        eachEntry(readIndex(), [&](std::string_view key, std::span<const uint8_t> value) {
            if (key == facts_->hash) meta = asText(only(value).bytes);
        });
        // What cannot be merged with is replaced.
        if (!meta.empty() && writeMerged(meta)) return merged_ = true;
    }
    return writeNew() && addToIndex(facts_->event->time, false, false);
}

bool RecordFile::writeNew() {
    const auto existing = fileName_.length() ? NewFile::Existing::Replace : NewFile::Existing::Keep;
    NewFile file(folder_->get(), *arena_);
    ArchiveWriter writer(NewFile::sink, &file);
    writeRecord(writer);
    if (existing == NewFile::Existing::Replace)
        return file.commit(fileName_.view().data(), existing);
    for (int further = 0; further < 100; ++further) {
        fileName_.clear();
        fileName_.text(".crash_");
        facts_->localTime->writeForFileName(facts_->cashTime(), fileName_);
        if (further) fileName_.text("-").decimal(further);
        fileName_.text(".data").text({"", 1});
        if (file.commit(fileName_.view().data(), existing)) return true;
        if (errno != EEXIST) break;
    }
    fileName_.clear();
    return false;
}

bool RecordFile::addToIndex(int64_t time, bool hasNew, bool uplaoded) {
    const auto index = readIndex();
    // The module makes a damaged index anew from the files.
    if (index.empty() && errno != ENOENT) return true;
    NewFile file(folder_->get(), *arena_);
    ArchiveWriter writer(NewFile::sink, &file);
    if (index.empty())
        writer.beginMap();
    else if (!copyMap(index, file, [&](std::string_view key, auto) {
                 return key == facts_->hash || key == facts_->replacedHash;
             }))
        return true;
    const auto meta = arena_->takeSpan<char>(512);
    TextBuffer encoded(meta);
    ArchiveWriter metaWriter(
        [](void* to, const void* bytes, size_t count) {
            static_cast<TextBuffer*>(to)->text({static_cast<const char*>(bytes), count});
        },
        &encoded);
    metaWriter.beginMap();
    field(metaWriter, "md5", facts_->hash);
    field(metaWriter, "file", fileName_.view().substr(0, fileName_.length() - 1));
    number(metaWriter, "time", time);
    metaWriter.text("hasNew");
    metaWriter.boolean(hasNew);
    metaWriter.text("uplaoded");
    metaWriter.boolean(uplaoded);
    metaWriter.end();
    writer.text(facts_->hash);
    writer.bytes({reinterpret_cast<const uint8_t*>(encoded.view().data()), encoded.length()});
    writer.end();
    return file.commit(nameOf(facts_->prepared->crashMetaFile), NewFile::Existing::Replace);
}

void RecordFile::writeRecord(ArchiveWriter& writer) {
    const CrashEvent& event = *facts_->event;
    const CvrPreparedCrash& prepared = *facts_->prepared;
    const CollectedCrash& crash = *facts_->crash;
    writer.beginMap();
    number(writer, "time", event.time);
    number(writer, "dcount", 0);
    field(writer, "crashType", "100");
    number(writer, "cashTime", facts_->cashTime());
    field(writer, "exceptionType", event.type);
    field(writer, "excepitonAddress", event.address);
    field(writer, "callStack", facts_->callStack);
    field(writer, "causedBy", event.error.empty() ? "nil" : event.error);
    if (crash.crashedThread()) plain(writer, "threadName", crash.crashedThread()->index);
    field(writer, "hash", facts_->hash);
    writeImages(writer);
    field(writer, "deviceId", prepared.openudid);
    field(writer, "userId", prepared.userid);
    field(writer, "expUid", facts_->expUid);
    writer.text("attachmentList");
    writer.beginList();
    writeLogAttachment(writer);
    writer.end();
    writer.text("valueMap");
    writer.beginMap();
    writeValues(writer);
    writeHostValues(writer);
    writer.end();
    if (const auto* const userMap = session().userMaps.get()) {
        writer.text("userMap");
        writer.beginMap();
        for (const auto& [key, value] : *userMap) field(writer, key, value);
        writer.end();
    }
    writeSession(writer);
    writer.end();
}

void RecordFile::writeImages(ArchiveWriter& writer) {
    const ImageList& images = facts_->crash->images();
    if (images.count() == 0) return;
    writer.text("appInfo");
    writeImage(images.at(0), writer);
    writer.text("appInfoList");
    writer.beginList();
    for (size_t i = 1; i < images.count(); ++i)
        if (facts_->crash->isOnStacks(images.at(i))) writeImage(images.at(i), writer);
    writer.end();
}

void RecordFile::writeImage(const LoadedImage& image, ArchiveWriter& writer) {
    ShortText<32> base;
    ShortText<32> end;
    writer.beginMap();
    field(writer, "processName", image.shortName);
    field(writer, "cpuArchVersion", "x86_64");
    field(writer, "processUUID", {image.uuid, sizeof image.uuid - 1});
    field(writer, "processBaseAddr", base.address(image.base).view());
    field(writer, "endAddress", end.address(image.base + image.size - 1).view());
    field(writer, "path", image.path);
    writer.end();
}

void RecordFile::writeLogAttachment(ArchiveWriter& writer) {
    if (facts_->log.empty()) return;
    writer.beginMap();
    number(writer, "type", textAttachment);
    field(writer, "fileName", "crash.log");
    writer.text("data");
    writer.bytes({reinterpret_cast<const uint8_t*>(facts_->log.data()), facts_->log.size()});
    writer.end();
}

void RecordFile::writeValues(ArchiveWriter& writer) {
    const CvrPreparedCrash& prepared = *facts_->prepared;
    for (const auto& [key, value] : prepared.valueMap) field(writer, key, value);
    millionths(writer, "A8", facts_->machine.cpuUse);
    whole(writer, "A9", facts_->machine.freeMemory);
    whole(writer, "A10", -1);
    whole(writer, "A11", facts_->machine.freeDisk);
    plain(writer, "A31", ::getppid());
    field(writer, "A32", prepared.parentProcName);
    plain(writer, "A33", ::getpid());
    field(writer, "A34", prepared.processName);
    field(writer, "A36", isForeground(prepared) ? "true" : "false");
}

void RecordFile::writeHostValues(ArchiveWriter& writer) {
    const auto* const attachLog = session().attachLog.get();
    if (attachLog && !attachLog->empty()) field(writer, "attachDatas", *attachLog);
    if (const auto* const scenes = session().sceneData.get())
        for (const auto& [key, value] : *scenes) field(writer, key, value);
}

void RecordFile::writeSession(ArchiveWriter& writer) {
    writer.text("sessionInfo");
    writer.beginMap();
    field(writer, "sessionId", facts_->prepared->sessionId);
    writer.text("events");
    writer.beginList();
    const auto* const events = session().events.get();
    if (events) {
        // The handler's event counts as one of the hundred.
        for (size_t i = events->size() < 100 ? 0 : 1; i < events->size(); ++i)
            writer.text((*events)[i]);
    }
    if (!facts_->handlerEvent.empty()) writer.text(facts_->handlerEvent);
    writer.end();
    writer.end();
}

void writeHash(std::span<const std::string_view> texts, char (&hash)[32]) {
    MD5_CTX context;
    unsigned char digest[MD5_DIGEST_LENGTH];
    MD5Init(&context);
    for (const std::string_view text : texts)
        MD5Update(&context, reinterpret_cast<const uint8_t*>(text.data()), text.size());
    MD5Final(digest, &context);
    for (size_t i = 0; i < sizeof digest; ++i) {
        hash[2 * i] = "0123456789ABCDEF"[digest[i] >> 4];
        hash[2 * i + 1] = "0123456789ABCDEF"[digest[i] & 0xF];
    }
}

}  // namespace vorla::crash

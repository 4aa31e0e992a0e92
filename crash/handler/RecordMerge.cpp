// How a crash is added to an earlier one of the same hash.
#include "crash/handler/ArchiveFields.h"
#include "crash/handler/RecordFile.h"

namespace vorla::crash {
namespace {

constexpr size_t largestRecord = size_t{4} << 20;
constexpr std::string_view timesFile = "crash_times.log";

}  // namespace

bool RecordFile::writeMerged(std::string_view meta) {
    bool uplaoded = false;
    eachEntry({reinterpret_cast<const uint8_t*>(meta.data()), meta.size()},
              [&](std::string_view key, std::span<const uint8_t> value) {
                  const auto item = only(value);
                  if (key == "file" && item.bytes.size() < 60)
                      fileName_.text(item.text()).text({"", 1});
                  if (key == "uplaoded") uplaoded = item.number != 0;
              });
    if (fileName_.length() == 0 || fileName_.view().find('/') != std::string_view::npos) {
        fileName_.clear();
        return false;
    }
    const auto old = folder_->read(fileName_.view().data(), largestRecord, *arena_);
    NewFile file(folder_->get(), *arena_);
    ArchiveWriter writer(NewFile::sink, &file);
    std::span<const uint8_t> attachments;
    std::span<const uint8_t> values;
    int64_t count = 0;
    int64_t time = 0;
    const auto* const userMap = session().userMaps.get();
    const bool sound = copyMap(old, file, [&](std::string_view key, auto value) {
        if (key == "dcount") count = only(value).number;
        if (key == "time") time = only(value).number;
        if (key == "attachmentList") attachments = value;
        if (key == "valueMap") values = value;
        return key == "dcount" || key == "attachmentList" || key == "valueMap" || key == "expUid" ||
               key == "crashType" || (key == "userMap" && userMap);
    });
    if (!sound) {
        fileName_.clear();
        return false;
    }
    number(writer, "dcount", count + 1);
    field(writer, "crashType", "200");
    field(writer, "expUid", facts_->expUid);
    mergeAttachments(attachments, writer);
    writer.text("valueMap");
    if (!copyMap(values, file, [](auto, auto) { return false; })) writer.beginMap();
    writeHostValues(writer);
    writer.end();
    if (userMap) {
        writer.text("userMap");
        writer.beginMap();
        for (const auto& [key, value] : *userMap) field(writer, key, value);
        writer.end();
    }
    writer.end();
    return file.commit(fileName_.view().data(), NewFile::Existing::Replace) &&
           addToIndex(time, true, uplaoded);
}

void RecordFile::mergeAttachments(std::span<const uint8_t> old, ArchiveWriter& writer) {
    const auto room = arena_->takeSpan<char>(65536);
    TextBuffer times(room);
    writer.text("attachmentList");
    writer.beginList();
    ArchiveReader reader(old);
    if (reader.next().kind == ArchiveReader::Kind::List) {
        while (const auto attachment = reader.takeValue()) {
            std::string_view name;
            std::string_view data;
            eachEntry(*attachment, [&](std::string_view key, std::span<const uint8_t> value) {
                if (key == "fileName") name = only(value).text();
                if (key == "data") data = only(value).text();
            });
            if (name == timesFile) {
                times.text(data).text(";");
                continue;
            }
            writer.beginMap();
            eachEntry(*attachment, [&](std::string_view key, std::span<const uint8_t> value) {
                const auto item = only(value);
                writer.text(key);
                if (item.kind == ArchiveReader::Kind::Bytes)
                    writer.bytes(item.bytes);
                else if (item.kind == ArchiveReader::Kind::Text)
                    writer.text(item.text());
                else
                    writer.integer(item.number);
            });
            writer.end();
        }
    }
    times.decimal(facts_->cashTime());
    writer.beginMap();
    number(writer, "type", textAttachment);
    field(writer, "fileName", timesFile);
    writer.text("data");
    writer.bytes({reinterpret_cast<const uint8_t*>(times.view().data()), times.length()});
    writer.end();
    writer.end();
}

}  // namespace vorla::crash

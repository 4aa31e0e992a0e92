#include "crash/archive/ArchiveReader.h"

namespace vorla {

ArchiveReader::Item ArchiveReader::broken() {
    failed_ = true;
    return {};
}

ArchiveReader::Item ArchiveReader::open(Kind kind, uint64_t items) {
    if (depth_ == deepestNesting) return broken();
    left_[depth_++] = items;
    return {.kind = kind};
}

ArchiveReader::Item ArchiveReader::close() {
    --depth_;
    return {.kind = Kind::End};
}

ArchiveReader::Item ArchiveReader::string(Kind kind, uint64_t length) {
    if (length > bytes_.size() - position_) return broken();
    const auto view = bytes_.subspan(position_, static_cast<size_t>(length));
    position_ += view.size();
    return {.kind = kind, .bytes = view};
}

/// Reads what follows a head: its low bits or the one, two, four or eight bytes that they announce.
bool ArchiveReader::argument(uint8_t information, uint64_t& value) {
    value = information;
    if (information < 24) return true;
    if (information > 27) return false;
    const size_t width = size_t{1} << (information - 24U);
    if (width > bytes_.size() - position_) return false;
    value = 0;
    for (size_t i = 0; i < width; ++i) value = value << 8U | bytes_[position_++];
    return true;
}

ArchiveReader::Item ArchiveReader::next() {
    if (failed_) return {};
    if (depth_ > 0 && left_[depth_ - 1] == 0) return close();
    if (position_ == bytes_.size()) return depth_ == 0 ? Item{.kind = Kind::Finished} : broken();
    const uint8_t head = bytes_[position_++];
    if (head == 0xFF) return depth_ > 0 && left_[depth_ - 1] == endless ? close() : broken();
    if (depth_ > 0 && left_[depth_ - 1] != endless) --left_[depth_ - 1];
    return value(head);
}

ArchiveReader::Item ArchiveReader::value(uint8_t head) {
    if (head == 0xBF) return open(Kind::Map, endless);
    if (head == 0x9F) return open(Kind::List, endless);
    if (head == 0xF4 || head == 0xF5) return {.kind = Kind::Boolean, .number = head & 1};
    uint64_t number = 0;
    if (!argument(head & 0x1FU, number)) return broken();
    switch (head >> 5U) {
        case 2:
            return string(Kind::Bytes, number);
        case 3:
            return string(Kind::Text, number);
        case 4:
        case 5:
            // Each element takes a byte at least, so a larger number cannot be true.
            if (number > bytes_.size()) return broken();
            return head >> 5U == 4 ? open(Kind::List, number) : open(Kind::Map, 2 * number);
        default:
            break;
    }
    if (head >> 5U > 1 || number > INT64_MAX) return broken();
    return {.kind = Kind::Integer,
            .number = static_cast<int64_t>(head >> 5U == 0 ? number : ~number)};
}

std::optional<std::span<const uint8_t>> ArchiveReader::takeValue() {
    const size_t start = position_;
    const int level = depth_;
    do {
        const Kind kind = next().kind;
        if (kind == Kind::Broken || kind == Kind::Finished) return std::nullopt;
        if (depth_ < level) {
            broken();
            return std::nullopt;
        }
    } while (depth_ > level);
    return bytes_.subspan(start, position_ - start);
}

bool ArchiveReader::isWhole(std::span<const uint8_t> bytes, Kind kind) {
    ArchiveReader reader(bytes);
    if (ArchiveReader(bytes).next().kind != kind) return false;
    return reader.takeValue() && reader.position() == bytes.size();
}

}  // namespace vorla

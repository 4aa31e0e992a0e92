#include "NEX/NEX+PAK/SerializationPAK/PakPropertyInfo.h"

#include <algorithm>
#include <stdexcept>

int PakPropertyInfo::compareWithTag(const PakPropertyInfo& other) const {
    return tag < other.tag ? -1 : tag > other.tag ? 1 : 0;
}

std::string PakPropertyInfo::description() const {
    return "{\n    tag      : " + std::to_string(tag) +
           "\n    required : " + std::to_string(static_cast<int>(flag)) +
           "\n    name     : " + name + "\n    type     : " + type +
           "\n    ext      : " + (ext ? ext->description() : "(null)") + "\n}\n";
}

void PakPropsDescription::insert(PakPropertyInfo info) {
    const int64_t tag = info.tag;
    const auto place = std::ranges::lower_bound(entries_, tag, {}, &Entry::first);
    if (place != entries_.end() && place->first == tag)
        place->second = std::move(info);
    else
        entries_.emplace(place, tag, std::move(info));
}

const PakPropertyInfo& PakPropsDescription::at(int64_t tag) const {
    const auto place = std::ranges::lower_bound(entries_, tag, {}, &Entry::first);
    if (place == entries_.end() || place->first != tag)
        throw std::out_of_range("no field of that tag");
    return place->second;
}

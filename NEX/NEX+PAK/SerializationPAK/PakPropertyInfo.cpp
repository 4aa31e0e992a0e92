#include "NEX/NEX+PAK/SerializationPAK/PakPropertyInfo.h"

int PakPropertyInfo::compareWithTag(const PakPropertyInfo& other) const {
    return tag < other.tag ? -1 : tag > other.tag ? 1 : 0;
}

std::string PakPropertyInfo::description() const {
    return "{\n    tag      : " + std::to_string(tag) +
           "\n    required : " + std::to_string(static_cast<int>(flag)) +
           "\n    name     : " + name + "\n    type     : " + type +
           "\n    ext      : " + (ext ? ext->description() : "(null)") + "\n}\n";
}

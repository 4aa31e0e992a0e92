#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "NEX/NEX+PAK/SerializationPAK/PakPair.h"

namespace vorla {
class PakField;
}

/// What the storage name of one declared field says.
class PakPropertyInfo {
 public:
    static PakPropertyInfo propertyInfo() { return {}; }

    /// Orders by tag: -1, 0 or 1.
    [[nodiscard]] int compareWithTag(const PakPropertyInfo& other) const;
    [[nodiscard]] std::string description() const;

    int64_t tag = 0;
    /// True when the field is required.
    bool flag = false;
    /// The accessor: "pak_" and the field's name.
    std::string name;
    /// One letter for a number, `@"ClassName"` for all else.
    std::string type;
    /// The contents of a list or map; null for all else.
    std::shared_ptr<const PakPair> ext;
    /// The way to the field's value, found by `name`.
    const vorla::PakField* field = nullptr;
};

/// By tag, thus in the order in which the fields are written.
using PakPropsDescription = std::map<int64_t, PakPropertyInfo>;

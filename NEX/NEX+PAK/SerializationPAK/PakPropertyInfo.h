#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

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

/// What the storage names of a class say, by tag and thus in the order in which the fields are
/// written. One run of memory: it is walked for every object that is written or read.
class PakPropsDescription {
 public:
    using Entry = std::pair<int64_t, PakPropertyInfo>;

    /// Of two fields of one tag the later stays.
    void insert(PakPropertyInfo info);

    [[nodiscard]] auto begin() const { return entries_.begin(); }
    [[nodiscard]] auto end() const { return entries_.end(); }
    [[nodiscard]] size_t size() const { return entries_.size(); }
    /// Raises std::out_of_range for a tag that no field has.
    [[nodiscard]] const PakPropertyInfo& at(int64_t tag) const;

 private:
    std::vector<Entry> entries_;
};

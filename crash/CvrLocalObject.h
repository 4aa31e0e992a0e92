#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "crash/archive/RecordArchive.h"

/// The base of the records that the crash reporter keeps on disk.
class CvrLocalObject {
 public:
    virtual ~CvrLocalObject() = default;
    CvrLocalObject() = default;
    CvrLocalObject(const CvrLocalObject&) = default;
    CvrLocalObject(CvrLocalObject&&) = default;
    CvrLocalObject& operator=(const CvrLocalObject&) = default;
    CvrLocalObject& operator=(CvrLocalObject&&) = default;

    /// An identifier slot; nothing fills it.
    int64_t md5 = 0;
    /// The record's time in ms since 1970.
    int64_t time = 0;
    /// How many further times the same crash happened.
    int32_t dcount = 0;
    /// The length of the archive that the record was last written to or read from; not archived.
    int64_t encLen = 0;

    /// The record as an archive, with its fields under their names.
    virtual std::string encodeData() = 0;
    /// Takes the fields over from an archive. One that cannot be read is logged and leaves the
    /// record as it was; false only for absent data. Who must know uses `decode`.
    bool setEncodeData(std::string_view data);
    /// The same; false whenever nothing was taken over.
    virtual bool decode(std::string_view data) = 0;

    template <typename Self, typename Visit>
    static void eachField(Self& self, Visit&& visit) {
        visit("md5", self.md5);
        visit("time", self.time);
        visit("dcount", self.dcount);
    }

    friend bool operator==(const CvrLocalObject&, const CvrLocalObject&) = default;

 protected:
    [[nodiscard]] virtual const char* className() const = 0;
};

/// Implements the archive operations for a record with a list of its fields.
template <typename Self>
class CvrArchivedObject : public CvrLocalObject {
 public:
    std::string encodeData() override {
        std::string data = vorla::archivedData(static_cast<Self&>(*this));
        encLen = static_cast<int64_t>(data.size());
        return data;
    }
    bool decode(std::string_view data) override {
        auto record = vorla::valueFromData<Self>(vorla::asBytes(data));
        if (!record) return false;
        static_cast<Self&>(*this) = std::move(*record);
        encLen = static_cast<int64_t>(data.size());
        return true;
    }

 protected:
    [[nodiscard]] const char* className() const override { return Self::name; }
};

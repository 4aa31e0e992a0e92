#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// One entry of the index of stored crashes.
class CvrCrashMetaData {
 public:
    /// The crash's hash, also its key in the index.
    std::string md5;
    /// The crash file's name, without the folder.
    std::string file;
    /// The crash's time in ms since 1970.
    int64_t time = 0;
    /// There is something that has not been sent.
    bool hasNew = false;
    /// The record was sent once.
    bool uplaoded = false;

    /// The operations of the same names of CvrLocalObject.
    [[nodiscard]] std::string encodeData() const;
    bool setEncodeData(std::string_view data);
    bool decode(std::string_view data);

    template <typename Self, typename Visit>
    static void eachField(Self& self, Visit&& visit) {
        visit("md5", self.md5);
        visit("file", self.file);
        visit("time", self.time);
        visit("hasNew", self.hasNew);
        visit("uplaoded", self.uplaoded);
    }
    friend bool operator==(const CvrCrashMetaData&, const CvrCrashMetaData&) = default;
};

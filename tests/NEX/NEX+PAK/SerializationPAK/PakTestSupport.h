#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>

#include "NEX/NEX+PAK/SerializationPAK/PakFailure.h"
#include "NEX/NEX+PAK/SerializationPAK/PakInputStream.h"
#include "NEX/NEX+PAK/SerializationPAK/PakObjectV2.h"
#include "NEX/NEX+PAK/SerializationPAK/PakOutputStream.h"

namespace vorla::test {

/// "28 0C" to bytes; spaces are free.
inline PakData bytesOf(std::string_view hex) {
    PakData bytes;
    std::string digits;
    for (const char c : hex) {
        if (c == ' ') continue;
        digits += c;
        if (digits.size() < 2) continue;
        bytes.push_back(static_cast<uint8_t>(std::stoi(digits, nullptr, 16)));
        digits.clear();
    }
    return bytes;
}

inline PakData repeated(std::string_view hex, size_t times) {
    const PakData unit = bytesOf(hex);
    PakData bytes;
    for (size_t i = 0; i < times; ++i) bytes.insert(bytes.end(), unit.begin(), unit.end());
    return bytes;
}

inline PakData operator+(PakData left, const PakData& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

inline std::string hexOf(std::span<const uint8_t> bytes) {
    std::string text;
    for (const uint8_t byte : bytes) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%02X ", byte);
        text += digits;
    }
    if (!text.empty()) text.pop_back();
    return text;
}

/// What a check that would end the process throws while a FailureTrap is alive.
struct PakFailed {
    std::string text;
};

class FailureTrap {
 public:
    FailureTrap() {
        setPakFailureHook([](const char* text) { throw PakFailed{text}; });
    }
    ~FailureTrap() { setPakFailureHook(nullptr); }
    FailureTrap(const FailureTrap&) = delete;
    FailureTrap& operator=(const FailureTrap&) = delete;
};

/// The text with which the work failed; "raised: ..." for one that can be caught in programs,
/// "done" for none.
inline std::string outcomeOf(const std::function<void()>& work) {
    const FailureTrap trap;
    try {
        work();
    } catch (const PakFailed& failed) {
        return failed.text;
    } catch (const std::runtime_error& raised) {
        return std::string("raised: ") + raised.what();
    }
    return "done";
}

/// Reads whole numbers until there are none, and keeps nothing else.
class HandWritten : public PakObject {
    PAK_OBJECT(HandWritten, PakObject, nullptr)
    int64_t value = -1;
    bool unpacked = false;
    void __pack(PakOutputStream& stream) override { stream.writeInt(value, 0); }
    void __unpack(PakInputStream& stream) override {
        unpacked = true;
        if (const PakValue number = stream.readNumber(0, false)) value = number.int64Value();
    }
};

inline PakDescription listOf(const PakDescription& element) {
    return PakPair::pairWithValue(element, {});
}
inline PakDescription mapOf(const PakDescription& key, const PakDescription& value) {
    return PakPair::pairWithValue(value, key);
}

}  // namespace vorla::test

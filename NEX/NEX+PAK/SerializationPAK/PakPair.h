#pragma once

#include <memory>
#include <string>
#include <string_view>

class PakClass;
class PakPair;

/// What a reader has to expect: nothing, a class, or a pair that stands for a container.
class PakDescription {
 public:
    PakDescription() = default;
    PakDescription(const PakClass& expected) : class_(&expected) {}
    PakDescription(std::shared_ptr<const PakPair> pair) : pair_(std::move(pair)) {}
    PakDescription(std::shared_ptr<PakPair> pair) : pair_(std::move(pair)) {}

    [[nodiscard]] const PakClass* asClass() const { return class_; }
    [[nodiscard]] const std::shared_ptr<const PakPair>& asPair() const { return pair_; }
    explicit operator bool() const { return class_ || pair_; }

    /// The name of the class, "PakPair", or "(null)".
    [[nodiscard]] std::string className() const;

 private:
    const PakClass* class_ = nullptr;
    std::shared_ptr<const PakPair> pair_;
};

/// The contents of a container: with a key those of a map, without one those of a list.
class PakPair {
 public:
    static std::shared_ptr<const PakPair> pairWithValue(PakDescription value,
                                                        PakDescription forKey);

    /// Reads an extension string, the short form of a description inside a storage name:
    /// "M", two decimal digits n, n characters that describe the key, the description of the value;
    /// "V" and the description of the element; "O" and a class name.
    /// Fails with "0" on anything else. An unknown class name yields an empty description. `from`
    /// is the class in whose storage name the text stands, see `PakClass::named`.
    static PakDescription analyzeExtStr(std::string_view text, const PakClass* from = nullptr);

    /// The same for a whole extension string, which must be shorter than 128 characters and
    /// describe a container.
    static std::shared_ptr<const PakPair> pairFromExtStr(std::string_view text,
                                                         const PakClass* from = nullptr);

    /// "<key class, value class>".
    [[nodiscard]] std::string description() const;

    PakDescription key;
    PakDescription value;
};

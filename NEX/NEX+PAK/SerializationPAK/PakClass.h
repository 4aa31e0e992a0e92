#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "NEX/NEX+PAK/SerializationPAK/PakPropertyInfo.h"
#include "NEX/NEX+PAK/SerializationPAK/PakValue.h"

namespace vorla {
class PakField;

/// A text that holds a class's qualified name at its end, followed by "]".
template <typename Class>
constexpr const char* pakScope() {
    return __PRETTY_FUNCTION__;
}

}  // namespace vorla

/// A class as a value: what the streams and the object layer must know of a kind of value to make
/// and recognise it. There is one for each kind of plain value and one for each structure, which
/// the PAK_OBJECT and PAK_OBJECT_V2 lines declare; all live as long as the process and differ by
/// their address. Any thread.
class PakClass {
 public:
    using Create = PakObjectPtr (*)();
    using Size = size_t (*)();

    constexpr PakClass(const char* name, PakValue::Kind kind) : name_(name), kind_(kind) {}
    /// `scope` distinguishes two classes of one name, see `vorla::pakScope`.
    constexpr PakClass(const char* name, const char* scope, PakClass* base, Create create,
                       Size size, const char* pakType)
        : name_(name),
          kind_(PakValue::Kind::Object),
          scope_(scope),
          base_(base),
          create_(create),
          size_(size),
          pakType_(pakType) {}
    PakClass(const PakClass&) = delete;
    PakClass& operator=(const PakClass&) = delete;

    static const PakClass& numberClass();
    static const PakClass& stringClass();
    static const PakClass& dataClass();
    static const PakClass& arrayClass();
    static const PakClass& dictionaryClass();

    /// The class of that name, or null. Plain values go by "NSNumber", "NSString", "NSData",
    /// "NSArray" and "NSDictionary", the names that storage names of fields use.
    ///
    /// Names are unqualified. Of several classes of one name the one in the namespace (or class) of
    /// `from`, the class that asks, is meant; when that does not decide it, it ends the process.
    static const PakClass* named(std::string_view name, const PakClass* from = nullptr);

    [[nodiscard]] const char* name() const { return name_; }
    [[nodiscard]] PakValue::Kind kind() const { return kind_; }
    [[nodiscard]] bool isSubclassOf(const PakClass& other) const;

    /// A new instance from the plain constructor, or null for a class of plain values and for one
    /// that cannot be made on its own.
    [[nodiscard]] PakObjectPtr object() const { return create_ ? create_() : nullptr; }

    /// What an instance and its holders take in memory.
    [[nodiscard]] size_t instanceSize() const { return size_ ? size_() : 0; }

    /// Nothing for empty data; otherwise a new instance that has read the data.
    [[nodiscard]] PakObjectPtr fromData(const PakData& data) const;

    /// The full name of a structure that is sent by name, nothing for all others.
    [[nodiscard]] std::optional<std::string> pakType() const;

    /// The fields that this very class declares, not those of its bases: storage name to encoded
    /// type. The encoded type is one letter for a number and `@"ClassName"` for all else.
    [[nodiscard]] std::map<std::string, std::string> pakPropertiesWithEncodedTypes() const;

    /// What the storage names of this very class say, by tag. Parsed by the first call, under one
    /// lock for all classes, and kept.
    [[nodiscard]] const PakPropsDescription& pakPropsDescription() const {
        const auto* known = properties_.load(std::memory_order_acquire);
        return known ? *known : makePropsDescription();
    }

    /// The one reference instance of the class, made by the first call and kept.
    [[nodiscard]] const PakObjectPtr& pakRefObject() const {
        const auto* known = refObject_.load(std::memory_order_acquire);
        return known ? *known : makeRefObject();
    }

    /// Calls with each field that this very class declares, in the order of their declaration.
    template <typename Call>
    void forEachField(Call call) const {
        for (const vorla::PakField* field = firstField_; field; field = following(*field))
            call(*field);
    }

 private:
    friend class vorla::PakField;
    friend struct PakClassEntry;
    static const vorla::PakField* following(const vorla::PakField& field);
    [[nodiscard]] const vorla::PakField* fieldWithAccessor(std::string_view accessor) const;
    [[nodiscard]] bool isNeighbourOf(const PakClass& other) const;
    [[nodiscard]] PakPropsDescription parsedProperties() const;
    [[nodiscard]] const PakPropsDescription& makePropsDescription() const;
    [[nodiscard]] const PakObjectPtr& makeRefObject() const;

    const char* name_;
    PakValue::Kind kind_;
    const char* scope_ = "";
    const PakClass* base_ = nullptr;
    Create create_ = nullptr;
    Size size_ = nullptr;
    const char* pakType_ = nullptr;
    /// The fields in the order of their declaration, linked before `main` begins.
    vorla::PakField* firstField_ = nullptr;
    vorla::PakField* lastField_ = nullptr;
    PakClass* nextClass_ = nullptr;
    mutable std::atomic<const PakPropsDescription*> properties_{nullptr};
    mutable std::atomic<const PakObjectPtr*> refObject_{nullptr};
};

/// Makes a structure's class known by name, as a static object next to it.
struct PakClassEntry {
    explicit PakClassEntry(PakClass& declared);
};

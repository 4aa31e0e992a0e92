#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "NEX/NEX+PAK/SerializationPAK/PakFieldTraits.h"
#include "NEX/NEX+PAK/SerializationPAK/PakStorageName.h"

class PakClass;
class PakObject;

namespace vorla {

/// One declared field of a class: its storage name as text and the way to its value through its
/// accessors. Static objects of the class, linked to it before `main` begins and never changed
/// afterwards.
class PakField {
 public:
    PakField(PakClass& owner, const char* storageName, const char* accessor);
    virtual ~PakField() = default;
    PakField(const PakField&) = delete;
    PakField& operator=(const PakField&) = delete;

    [[nodiscard]] const char* storageName() const { return storageName_; }
    [[nodiscard]] std::string_view accessor() const { return accessor_; }
    [[nodiscard]] const PakField* next() const { return next_; }

    [[nodiscard]] virtual std::string encodedType() const = 0;
    [[nodiscard]] virtual PakValue value(const PakObject& object) const = 0;
    /// Writes the value; an optional one only when it is present and not `reference` itself.
    virtual void pack(const PakObject& object, PakOutputStream& stream, const PakPropertyInfo& info,
                      const PakObject* reference) const = 0;
    /// Takes the value over from the stream; an absent one leaves the field as it is.
    virtual void unpack(PakObject& object, PakInputStream& stream,
                        const PakPropertyInfo& info) const = 0;

 private:
    const char* storageName_;
    const char* accessor_;
    PakField* next_ = nullptr;
};

/// The field for values of type T, reached by the accessors that `Access` names.
template <typename T, typename Access>
class PakTypedField final : public PakField {
 public:
    using PakField::PakField;
    using Traits = PakFieldTraits<T>;

    [[nodiscard]] std::string encodedType() const override { return Traits::encodedType(); }

    [[nodiscard]] PakValue value(const PakObject& object) const override {
        return PakValue(Traits::wrapped(Access::get(object)));
    }

    void pack(const PakObject& object, PakOutputStream& stream, const PakPropertyInfo& info,
              const PakObject* reference) const override {
        Traits::pack(Access::get(object), stream, info, reference);
    }

    void unpack(PakObject& object, PakInputStream& stream,
                const PakPropertyInfo& info) const override {
        if (auto value = Traits::unpack(stream, info)) Access::set(object, std::move(*value));
    }
};

}  // namespace vorla

/// Declares one field: `Type` is the type of its value, `storage` its storage name, `field` the
/// name in it. The storage name says all that the encoding needs, its parts joined by "_":
///
///   pakv2_p      the prefix
///   21           the tag
///   r or o       required, or optional (any word but "r")
///   iKey         the field's name, which may hold further underscores
///   _b0x9i_...   for a list or map only: what it holds, as described at `PakPair::analyzeExtStr`
///
/// The value is reached as `pak_<field>()` and `setPak_<field>(value)`; an initial value may follow
/// as a fourth argument. Types: bool, the integers up to signed 64 bits, float, double,
/// std::string, PakData, PakArray, PakDictionary, PakNumber, std::shared_ptr to a structure, and
/// std::optional of any but numbers and pointers for values that may be absent. A storage name that
/// contradicts the type or the field does not compile. What follows the line is public.
#define PAK_FIELD(Type, storage, field, ...)                                                \
 public:                                                                                    \
    static_assert(vorla::pakTagFits(#storage), "a tag is a decimal number from 0 to 255");  \
    static_assert(vorla::pakNameFits(#storage, #field),                                     \
                  "a storage name is pakv2_p_<tag>_<r or o>_<field>");                      \
    static_assert(vorla::pakContentsFit(#storage, vorla::kPakContainer<Type>),              \
                  "a list or map, and nothing else, ends in __b0x9i_ and what it holds");   \
    static_assert(!std::same_as<Type, uint64_t>, "unsigned 64 bits cannot be encoded");     \
    [[nodiscard]] const Type& pak_##field() const {                                         \
        return storage;                                                                     \
    }                                                                                       \
    void setPak_##field(Type value) {                                                       \
        storage = std::move(value);                                                         \
    }                                                                                       \
                                                                                            \
 protected:                                                                                 \
    Type storage{__VA_ARGS__};                                                              \
    struct PakAccess_##field {                                                              \
        static const Type& get(const PakObject& object) {                                   \
            return static_cast<const PakSelf&>(object).pak_##field();                       \
        }                                                                                   \
        template <typename Value>                                                           \
        static void set(PakObject& object, Value&& value) {                                 \
            static_cast<PakSelf&>(object).setPak_##field(Type(std::forward<Value>(value))); \
        }                                                                                   \
    };                                                                                      \
    static inline const vorla::PakTypedField<Type, PakAccess_##field> pakField_##field{     \
        pakClass_, #storage, "pak_" #field};                                                \
                                                                                            \
 public:

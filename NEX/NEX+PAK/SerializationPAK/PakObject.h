#pragma once

#include <concepts>
#include <memory>
#include <optional>
#include <string>

#include "NEX/NEX+PAK/SerializationPAK/PakClass.h"
#include "NEX/NEX+PAK/SerializationPAK/PakField.h"
#include "NEX/NEX+PAK/SerializationPAK/PakFormat.h"
#include "NEX/NEX+PAK/SerializationPAK/PakLimits.h"
#include "NEX/NEX+PAK/SerializationPAK/PakValue.h"

class PakInputStream;
class PakOutputStream;

/// Where an object is archived to and restored from: one byte string.
class PakCoder {
 public:
    virtual ~PakCoder() = default;
    virtual void encodeDataObject(const PakData& data) = 0;
    virtual PakData decodeDataObject() = 0;
};

/// The base of all structures. A structure written by hand derives from it and supplies `__pack`
/// and `__unpack`; one that is declared field by field derives from PakObjectV2. Its class body
/// begins with PAK_OBJECT (or PAK_OBJECT_V2).
///
/// An object belongs to one thread at a time; different objects of a class may be packed and read
/// on several threads at once.
class PakObject {
 public:
    PakObject() = default;
    PakObject(const PakObject&) = default;
    PakObject& operator=(const PakObject&) = default;
    virtual ~PakObject() = default;

    static const PakClass& pakClass() { return pakClass_; }
    /// The class that the object was made as.
    [[nodiscard]] virtual const PakClass& dynamicClass() const { return pakClass_; }

    /// The full name of the structure, when it is one that is sent by name.
    [[nodiscard]] std::optional<std::string> pakType() const { return dynamicClass().pakType(); }

    /// Takes the fields over from bytes that hold them without a head around; returns itself. An
    /// optional field that is absent keeps its value. See PakInputStream for what bad bytes do.
    PakObject& fromData(const PakData& data);
    /// The fields, without a head around.
    [[nodiscard]] PakData toData();

    /// Write and read the fields. The base raises PakInconsistencyException: every subclass must
    /// supply them.
    virtual void __pack(PakOutputStream& stream);
    virtual void __unpack(PakInputStream& stream);

    /// All fields by storage name, for logs. One thread at a time.
    [[nodiscard]] virtual std::string description() const;

    void encodeWithCoder(PakCoder& coder);
    void initWithCoder(PakCoder& coder);

 protected:
    static PakClass pakClass_;
};

/// A new instance read from the data, or null when the data is empty.
template <std::derived_from<PakObject> T>
std::shared_ptr<T> pakObjectFromData(const PakData& data) {
    return std::static_pointer_cast<T>(T::pakClass().fromData(data));
}

/// The first line of a structure's class body. `typeName` is the full name under which it is sent
/// ("ZB.STStat"), nullptr for one that is not sent by name. The class must have a plain
/// constructor. What follows the line is public.
#define PAK_OBJECT(Class, Base, typeName)                                                    \
 public:                                                                                     \
    using PakSelf = Class;                                                                   \
    static std::shared_ptr<Class> object() {                                                 \
        return std::make_shared<Class>();                                                    \
    }                                                                                        \
    static const PakClass& pakClass() {                                                      \
        return pakClass_;                                                                    \
    }                                                                                        \
    [[nodiscard]] const PakClass& dynamicClass() const override {                            \
        return pakClass_;                                                                    \
    }                                                                                        \
                                                                                             \
 protected:                                                                                  \
    static PakObjectPtr pakCreate() {                                                        \
        return object();                                                                     \
    }                                                                                        \
    /* With the counters of a shared pointer and the value that holds it in a container. */  \
    static size_t pakSize() {                                                                \
        return sizeof(Class) + 4 * vorla::PakLimits::kBlock;                                 \
    }                                                                                        \
    static inline constinit PakClass pakClass_{                                              \
        #Class, vorla::pakScope<Class>(), &Base::pakClass_, &pakCreate, &pakSize, typeName}; \
    static inline const PakClassEntry pakClassEntry_{pakClass_};                             \
                                                                                             \
 public:

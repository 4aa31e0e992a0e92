#pragma once

#include "NEX/NEX+PAK/SerializationPAK/RequestPacket.h"
#include "NEX/NEX+PAK/SerializationPAK/ZenAttribute.h"

/// A whole call or reply. Its bytes are four bytes of length (big-endian, these four included) and
/// the ten fields of the header, whose `sBuffer` holds the attributes.
///
/// `fromData` raises NexSerializableException when the length does not match the bytes that came,
/// before it reads anything else; a frame that matches and lacks a required field ends the process
/// as PakInputStream describes.
class ZenPacket : public RequestPacket {
    PAK_OBJECT(ZenPacket, RequestPacket, nullptr)

    ZenPacket();

    static std::shared_ptr<ZenPacket> packet() { return object(); }

    [[nodiscard]] ZenAttribute& attributes() { return *attributes_; }
    [[nodiscard]] const ZenAttribute& attributes() const { return *attributes_; }

    void putObjectAttr(std::string_view name, const PakValue& value);
    void putObjectAttr(std::string_view name, ZenAttribute::Text type, const PakValue& value);
    void putDataAttr(std::string_view name, std::span<const uint8_t> value);

    /// The structure under a name, whatever type was stored with it; null when there is none. A
    /// class that is no structure fails with "[theClass isSubclassOfClass:[PakObject class]]".
    [[nodiscard]] PakObjectPtr getObjectAttr(std::string_view name, const PakClass& forClass) const;

    /// The type that was stored under a name, or nothing.
    [[nodiscard]] std::optional<std::string> objectKeyWithName(std::string_view name) const;

    /// The reply's result: the attribute of empty name, 0 when there is none.
    [[nodiscard]] int32_t getReturnCode() const;

    /// The stream must be a fresh one: the length counts from its start.
    void __pack(PakOutputStream& stream) override;
    void __unpack(PakInputStream& stream) override;

    [[nodiscard]] std::string description() const override;

 private:
    std::shared_ptr<ZenAttribute> attributes_;
};

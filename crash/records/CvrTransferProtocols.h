#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

/// A record that is the body of a request.
class CvrObjTransToPakBufferProtocol {
 public:
    virtual ~CvrObjTransToPakBufferProtocol() = default;
    /// Writes the record's fields to the buffer. False, and a log line, without a buffer.
    virtual bool setDataToBuffer(std::vector<uint8_t>* buffer) const = 0;
};

/// A record that is the body of a reply.
class CvrLocalObjInitWithNexProtocol {
 public:
    virtual ~CvrLocalObjInitWithNexProtocol() = default;
    /// Takes the fields over; false, with nothing changed, for bytes that are no such record.
    virtual bool initLocalObjWithNexBuffer(std::span<const uint8_t> buffer) = 0;
};

/// What reads the body of the reply to a command. Any thread.
class CvrProtocolDataRegister {
 public:
    using ObjectType = std::function<std::shared_ptr<CvrLocalObjInitWithNexProtocol>()>;

    static CvrProtocolDataRegister& sharedInstance();

    void registResponseObjectType(ObjectType type, int32_t withKey);
    /// Empty when none is registered.
    [[nodiscard]] ObjectType getResponseObjectType(int32_t key) const;

 private:
    mutable std::mutex mutex_;
    std::map<int32_t, ObjectType> types_;
};

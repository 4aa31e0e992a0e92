#include "crash/records/CvrTransferProtocols.h"

#include "platform/base/raii.h"

CvrProtocolDataRegister& CvrProtocolDataRegister::sharedInstance() {
    static vorla::NoDestructor<CvrProtocolDataRegister> instance;
    return *instance;
}

void CvrProtocolDataRegister::registResponseObjectType(ObjectType type, int32_t withKey) {
    const std::lock_guard lock(mutex_);
    types_[withKey] = std::move(type);
}

CvrProtocolDataRegister::ObjectType CvrProtocolDataRegister::getResponseObjectType(
    int32_t key) const {
    const std::lock_guard lock(mutex_);
    const auto found = types_.find(key);
    return found == types_.end() ? ObjectType() : found->second;
}

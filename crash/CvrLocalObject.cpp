#include "crash/CvrLocalObject.h"

#include "crash/CvrLog.h"

bool CvrLocalObject::setEncodeData(std::string_view data) {
    if (data.empty()) {
        CvrLogWarn("<WARN> CVR: data is nil, can not instance %s", className());
        return false;
    }
    if (!decode(data))
        CvrLogError("<ERROR> CVR: got %s in CvrPersistObject setEncodeData for %s",
                    "an unreadable archive", className());
    return true;
}

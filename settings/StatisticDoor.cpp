#include "settings/StatisticDoor.h"

#include <memory>
#include <mutex>
#include <utility>

#include "platform/base/raii.h"

namespace vorla {
namespace {

struct Door {
    std::mutex mutex;
    std::shared_ptr<const std::function<void(int)>> receiver;
};

Door& door() {
    static NoDestructor<Door> instance;
    return *instance;
}

}  // namespace

void fireStatisticEvent(int number) {
    std::shared_ptr<const std::function<void(int)>> receiver;
    {
        const std::lock_guard lock(door().mutex);
        receiver = door().receiver;
    }
    if (receiver) (*receiver)(number);
}

void setStatisticReceiver(std::function<void(int)> receiver) {
    std::shared_ptr<const std::function<void(int)>> next;
    if (receiver) next = std::make_shared<const std::function<void(int)>>(std::move(receiver));
    // The old receiver dies outside the lock: its captures may fire an event themselves.
    const std::lock_guard lock(door().mutex);
    door().receiver.swap(next);
}

}  // namespace vorla

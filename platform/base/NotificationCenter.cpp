#include "platform/base/NotificationCenter.h"

#include <vorla/VLNotifications.h>

#include <algorithm>
#include <mutex>

#include "platform/base/raii.h"

namespace vorla {

struct NotificationCenter::State {
    struct Observer {
        uint64_t ticket;
        std::string name;
        std::shared_ptr<const Handler> handler;
    };
    std::mutex mutex;
    std::vector<Observer> observers;
    uint64_t lastTicket = 0;

    std::shared_ptr<const Handler> handlerOf(uint64_t ticket) {
        const std::lock_guard lock(mutex);
        const auto found = std::ranges::find(observers, ticket, &Observer::ticket);
        return found == observers.end() ? nullptr : found->handler;
    }
};

NotificationCenter::NotificationCenter() : state_(std::make_unique<State>()) {}
NotificationCenter::~NotificationCenter() = default;

NotificationCenter& NotificationCenter::defaultCenter() {
    static NoDestructor<NotificationCenter> instance;
    return *instance;
}

uint64_t NotificationCenter::addObserver(std::string_view name, Handler handler) {
    auto shared = std::make_shared<const Handler>(std::move(handler));
    const std::lock_guard lock(state_->mutex);
    state_->observers.push_back({++state_->lastTicket, std::string(name), std::move(shared)});
    return state_->lastTicket;
}

void NotificationCenter::removeObserver(uint64_t ticket) {
    // The handler is destroyed outside the lock: its captures may own objects that remove more.
    std::shared_ptr<const Handler> removed;
    const std::lock_guard lock(state_->mutex);
    const auto found = std::ranges::find(state_->observers, ticket, &State::Observer::ticket);
    if (found == state_->observers.end()) return;
    removed = std::move(found->handler);
    state_->observers.erase(found);
}

void NotificationCenter::post(std::string_view name, std::any object) {
    const Notification notification{std::string(name), std::move(object)};
    std::vector<uint64_t> tickets;
    {
        const std::lock_guard lock(state_->mutex);
        for (const auto& observer : state_->observers)
            if (observer.name == name) tickets.push_back(observer.ticket);
    }
    for (const uint64_t ticket : tickets)
        if (const auto handler = state_->handlerOf(ticket)) (*handler)(notification);
}

void NotificationObservers::observe(std::string_view name, NotificationCenter::Handler handler) {
    tickets_.push_back(NotificationCenter::defaultCenter().addObserver(name, std::move(handler)));
}

void NotificationObservers::clear() {
    for (const uint64_t ticket : std::exchange(tickets_, {}))
        NotificationCenter::defaultCenter().removeObserver(ticket);
}

}  // namespace vorla

uint64_t VLAddNotificationObserver(std::string_view name, VLNotificationHandler handler) {
    if (!handler) handler = [](std::string_view, const VLNotificationObject&) {};
    return vorla::NotificationCenter::defaultCenter().addObserver(
        name, [handler = std::move(handler)](const vorla::Notification& notification) {
            VLNotificationObject object;
            if (const auto* flag = std::any_cast<bool>(&notification.object))
                object = *flag;
            else if (const auto* values =
                         std::any_cast<VLNotificationDictionary>(&notification.object))
                object = *values;
            handler(notification.name, object);
        });
}

void VLRemoveNotificationObserver(uint64_t ticket) {
    vorla::NotificationCenter::defaultCenter().removeObserver(ticket);
}

#include "kit/NotificationCenter.h"

#include "kit/port/Platform.h"

#include <algorithm>

namespace kit {

struct NotificationCenter::Subscription::Entry {
    std::string name;
    const Object* object;
    Handler handler;
    bool removed = false;
};

NotificationCenter::Subscription& NotificationCenter::Subscription::operator=(Subscription&& other) noexcept {
    if (this != &other) {
        cancel();
        entries_ = std::move(other.entries_);
        entry_ = std::move(other.entry_);
    }
    return *this;
}

void NotificationCenter::Subscription::cancel() {
    auto entry = entry_.lock();
    entry_.reset();
    if (!entry) return;
    entry->removed = true;
    if (auto entries = entries_.lock()) std::erase(*entries, entry);
    // `entry` lets go of the handler last, once the center's list is consistent again.
}

bool NotificationCenter::Subscription::isActive() const {
    auto entry = entry_.lock();
    return entry && !entry->removed;
}

NotificationCenter::NotificationCenter() : entries_(std::make_shared<Subscription::Entries>()) {}

NotificationCenter::~NotificationCenter() {
    for (const auto& entry : *entries_) entry->removed = true;
}

NotificationCenter& NotificationCenter::defaultCenter() {
    return Platform::current().notificationCenter();
}

NotificationCenter::Subscription NotificationCenter::addObserver(std::string name, const Object* object,
                                                                 Handler handler) {
    auto entry = std::make_shared<Subscription::Entry>(
        Subscription::Entry{std::move(name), object, std::move(handler)});
    entries_->push_back(entry);
    return Subscription(entries_, entry);
}

void NotificationCenter::post(const Notification& notification) {
    // A snapshot, so that observers may add and end registrations while being called.
    std::vector<std::shared_ptr<Subscription::Entry>> matching;
    for (const auto& e : *entries_) {
        if ((e->name.empty() || e->name == notification.name) &&
            (!e->object || e->object == notification.object))
            matching.push_back(e);
    }
    for (const auto& e : matching) {
        if (e->removed) continue;
        Handler handler = e->handler;  // the handler may end its own registration
        handler(notification);
    }
}

void NotificationCenter::post(std::string name, Object* object, Value::Map userInfo) {
    post(Notification{std::move(name), object, std::move(userInfo)});
}

}  // namespace kit

#include "kit/NotificationCenter.h"

#include "kit/Platform.h"

#include <algorithm>

namespace kit {

NotificationCenter::NotificationCenter() = default;
NotificationCenter::~NotificationCenter() = default;

NotificationCenter& NotificationCenter::defaultCenter() {
    return Platform::current().notificationCenter();
}

void NotificationCenter::addObserver(const void* observer, std::string name, const void* object,
                                     Handler handler) {
    entries_.push_back(std::make_shared<Entry>(Entry{observer, std::move(name), object, std::move(handler)}));
}

void NotificationCenter::removeIf(const std::function<bool(const Entry&)>& match) {
    std::vector<std::shared_ptr<Entry>> removed;
    auto keep = std::stable_partition(entries_.begin(), entries_.end(),
                                      [&](const std::shared_ptr<Entry>& e) { return !match(*e); });
    for (auto it = keep; it != entries_.end(); ++it) {
        (*it)->removed = true;
        removed.push_back(std::move(*it));
    }
    entries_.erase(keep, entries_.end());
    // `removed` releases the handlers after the list is consistent again.
}

void NotificationCenter::removeObserver(const void* observer) {
    removeIf([&](const Entry& e) { return e.observer == observer; });
}

void NotificationCenter::removeObserver(const void* observer, std::string_view name, const void* object) {
    removeIf([&](const Entry& e) {
        return e.observer == observer && (name.empty() || e.name == name) && (!object || e.object == object);
    });
}

void NotificationCenter::post(const Notification& notification) {
    // A snapshot, so that observers may add and remove observers while being called.
    std::vector<std::shared_ptr<Entry>> matching;
    for (const auto& e : entries_) {
        if ((e->name.empty() || e->name == notification.name) &&
            (!e->object || e->object == notification.object))
            matching.push_back(e);
    }
    for (const auto& e : matching) {
        if (e->removed) continue;
        Handler handler = e->handler;  // the handler may remove itself
        handler(notification);
    }
}

void NotificationCenter::post(std::string name, Object* object, Value::Map userInfo) {
    post(Notification{std::move(name), object, std::move(userInfo)});
}

}  // namespace kit

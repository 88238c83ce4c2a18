#include "kit/SharedInstances.h"

#include "kit/port/Platform.h"

namespace kit {

SharedInstances::SharedInstances() = default;

SharedInstances::~SharedInstances() {
    clear();
}

SharedInstances& SharedInstances::current() {
    return Platform::current().sharedInstances();
}

void* SharedInstances::find(std::type_index type) const {
    for (const Entry& entry : entries_)
        if (entry.type == type) return entry.instance.get();
    return nullptr;
}

void SharedInstances::replace(std::type_index type, std::shared_ptr<void> instance) {
    std::shared_ptr<void> previous;  // destroyed outside the lock: its destructor may use others
    {
        std::lock_guard lock(mutex_);
        for (auto it = entries_.begin(); it != entries_.end(); ++it) {
            if (it->type != type) continue;
            previous = std::move(it->instance);
            if (instance)
                it->instance = std::move(instance);
            else
                entries_.erase(it);
            return;
        }
        if (instance) entries_.push_back({type, std::move(instance)});
    }
}

void SharedInstances::clear() {
    while (true) {
        std::shared_ptr<void> last;
        {
            std::lock_guard lock(mutex_);
            if (entries_.empty()) return;
            last = std::move(entries_.back().instance);
            entries_.pop_back();
        }
        // Destroyed without the lock: its destructor may still reach the ones made before it.
        last.reset();
    }
}

bool SharedInstances::empty() const {
    std::lock_guard lock(mutex_);
    return entries_.empty();
}

}  // namespace kit

#pragma once

#include <cassert>
#include <memory>
#include <mutex>
#include <typeindex>
#include <utility>
#include <vector>

namespace kit {

// The process-wide instances of one installed platform, one per type: each is made on first use
// and destroyed with the platform, in the reverse order of their making (an instance that uses
// another while it is made goes after it). A fresh platform is a fresh set. Safe to reach from
// any thread; making an instance holds a lock, so two threads never make two of the same type.
class SharedInstances {
public:
    SharedInstances();
    ~SharedInstances();
    SharedInstances(const SharedInstances&) = delete;
    SharedInstances& operator=(const SharedInstances&) = delete;

    // The installed platform's instances.
    static SharedInstances& current();

    // The instance of T, made with `make()` (a std::shared_ptr<T>) when there is none yet.
    template <class T, class Make>
    T& get(Make make) {
        std::lock_guard lock(mutex_);
        if (void* found = find(typeid(T))) return *static_cast<T*>(found);
        std::shared_ptr<T> made = make();
        assert(made && !find(typeid(T)) && "a shared instance was asked for while it was being made");
        T& instance = *made;
        entries_.push_back({typeid(T), std::move(made)});
        return instance;
    }
    template <class T>
    T& get() {
        return get<T>([] { return std::make_shared<T>(); });
    }
    // Whether T's instance has been made.
    template <class T>
    bool contains() const {
        std::lock_guard lock(mutex_);
        return find(typeid(T)) != nullptr;
    }
    // Puts `instance` in the place of T's, keeping its place in the order; null lets the next use
    // make a fresh one.
    template <class T>
    void set(std::shared_ptr<T> instance) {
        replace(typeid(T), std::move(instance));
    }

    // Destroys every instance, the last made first. Instances made meanwhile go too.
    void clear();
    bool empty() const;

private:
    struct Entry {
        std::type_index type;
        std::shared_ptr<void> instance;
    };
    void* find(std::type_index type) const;
    void replace(std::type_index type, std::shared_ptr<void> instance);

    mutable std::recursive_mutex mutex_;
    std::vector<Entry> entries_;
};

// The installed platform's instance of T, made with T's default constructor on first use.
template <class T>
T& shared() {
    return SharedInstances::current().get<T>();
}

}  // namespace kit

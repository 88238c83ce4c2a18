#pragma once

#include "kit/Object.h"
#include "kit/Value.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kit {

struct Notification {
    std::string name;
    // The object the notice is about; valid during delivery only. Observers may dynamic_cast it.
    Object* object = nullptr;
    Value::Map userInfo;
};

// Delivers notices by name to observers, synchronously and in the order they registered. Each
// registration is a Subscription that its owner keeps: it ends when the subscription goes, so an
// observer never hears a notice after it is gone. A registration that ends during a delivery is
// not called later in that delivery; one added during a delivery is called from the next one on.
class NotificationCenter : public Object {
public:
    using Handler = std::function<void(const Notification&)>;

    // A registration; ends with cancel() or when destroyed. Outlives its center safely.
    class Subscription {
    public:
        Subscription() = default;
        ~Subscription() { cancel(); }
        Subscription(Subscription&& other) noexcept = default;
        Subscription& operator=(Subscription&& other) noexcept;
        Subscription(const Subscription&) = delete;
        Subscription& operator=(const Subscription&) = delete;

        void cancel();
        bool isActive() const;

    private:
        friend class NotificationCenter;
        struct Entry;
        using Entries = std::vector<std::shared_ptr<Entry>>;
        Subscription(std::weak_ptr<Entries> entries, std::weak_ptr<Entry> entry)
            : entries_(std::move(entries)), entry_(std::move(entry)) {}

        std::weak_ptr<Entries> entries_;
        std::weak_ptr<Entry> entry_;
    };

    NotificationCenter();
    ~NotificationCenter() override;

    // The platform's default center (the application's notices arrive here).
    static NotificationCenter& defaultCenter();

    // An empty `name` observes every name; a null `object` observes every object (it is only
    // compared, never used).
    [[nodiscard]] Subscription addObserver(std::string name, const Object* object, Handler handler);

    void post(const Notification& notification);
    void post(std::string name, Object* object = nullptr, Value::Map userInfo = {});

    size_t observerCount() const { return entries_->size(); }

private:
    std::shared_ptr<Subscription::Entries> entries_;
};

}  // namespace kit

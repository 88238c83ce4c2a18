#pragma once

#include "kit/Object.h"
#include "kit/Value.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kit {

struct Notification {
    std::string name;
    // The object the notice is about; valid during delivery only. Observers may dynamic_cast it.
    Object* object = nullptr;
    Value::Map userInfo;
};

// Delivers notices by name to observers, synchronously and in the order they registered.
// Observers are identities, not owned: whoever registers removes itself before it goes away.
// An observer removed during a delivery is not called later in that delivery; one added during a
// delivery is called from the next one on.
class NotificationCenter : public Object {
public:
    using Handler = std::function<void(const Notification&)>;

    NotificationCenter();
    ~NotificationCenter() override;

    // The platform's default center (the application's notices arrive here).
    static NotificationCenter& defaultCenter();

    // An empty `name` observes every name; a null `object` observes every object.
    void addObserver(const void* observer, std::string name, const void* object, Handler handler);
    // Removes every registration of `observer`.
    void removeObserver(const void* observer);
    // Removes the registrations of `observer` for `name` (every name when empty) and `object`
    // (every object when null).
    void removeObserver(const void* observer, std::string_view name, const void* object = nullptr);

    void post(const Notification& notification);
    void post(std::string name, Object* object = nullptr, Value::Map userInfo = {});

    size_t observerCount() const { return entries_.size(); }

private:
    struct Entry {
        const void* observer;
        std::string name;
        const void* object;
        Handler handler;
        bool removed = false;
    };
    void removeIf(const std::function<bool(const Entry&)>& match);

    std::vector<std::shared_ptr<Entry>> entries_;
};

}  // namespace kit

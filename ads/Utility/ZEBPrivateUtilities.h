#pragma once

#include "kit/Object.h"

#include <memory>

// The process-wide table from a public object to its companion object (a banner view to its ad
// object, a screen to its private half). Keys are not retained, values are: a public object makes
// its companion in its constructor and removes it in its destructor. The table lives as long as the
// platform.
class ZEBPrivateUtilities {
public:
    static void setPrivateObjectForKey(std::shared_ptr<kit::Object> object, const kit::Object* key);
    static std::shared_ptr<kit::Object> privateObjectForKey(const kit::Object* key);
    static void removePrivateObjectForKey(const kit::Object* key);

    // The companion as its own class; null when there is none or it is of another class.
    template <class T>
    static std::shared_ptr<T> privateObjectForKeyAs(const kit::Object* key) {
        return std::dynamic_pointer_cast<T>(privateObjectForKey(key));
    }

    static size_t count();
};

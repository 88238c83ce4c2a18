#pragma once

#include "kit/Object.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace kit {

// Classes looked up by name at run time: the application's delegate class, ad-network adapters.
// A class registers a factory under its name, usually from a static initialiser next to it:
//
//     static const bool registered = kit::ClassRegistry::add<AppDelegate>();
class ClassRegistry {
public:
    using Factory = std::function<std::shared_ptr<Object>()>;

    // Registers (or replaces) the factory for `name`; returns true so it can initialise a static.
    static bool add(std::string name, Factory factory);
    // Under the class's own name unless another is given.
    template <class T>
    static bool add(std::string name = nameOfClass<T>()) {
        return add(std::move(name), [] { return std::static_pointer_cast<Object>(std::make_shared<T>()); });
    }
    static void remove(std::string_view name);

    static bool contains(std::string_view name);
    // A new instance of the class named `name`, or null when no such class is registered.
    static std::shared_ptr<Object> create(std::string_view name);
    // The same, as T; null when the class is not a T.
    template <class T>
    static std::shared_ptr<T> create(std::string_view name) {
        return std::dynamic_pointer_cast<T>(create(name));
    }

private:
    static std::map<std::string, Factory, std::less<>>& classes();
};

}  // namespace kit

#include "kit/ClassRegistry.h"

namespace kit {

std::map<std::string, ClassRegistry::Factory, std::less<>>& ClassRegistry::classes() {
    // Built on first use: registrations run from static initialisers in any order.
    static std::map<std::string, Factory, std::less<>> registry;
    return registry;
}

bool ClassRegistry::add(std::string name, Factory factory) {
    classes()[std::move(name)] = std::move(factory);
    return true;
}

void ClassRegistry::remove(std::string_view name) {
    if (auto it = classes().find(name); it != classes().end()) classes().erase(it);
}

bool ClassRegistry::contains(std::string_view name) {
    return classes().find(name) != classes().end();
}

std::shared_ptr<Object> ClassRegistry::create(std::string_view name) {
    auto it = classes().find(name);
    return it == classes().end() || !it->second ? nullptr : it->second();
}

}  // namespace kit

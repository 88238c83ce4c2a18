#include "kit/Object.h"

#include <cxxabi.h>

#include <fmt/format.h>

#include <cstdlib>
#include <typeinfo>

namespace kit {

Object::~Object() = default;

std::string Object::className() const {
    return classNameOf(typeid(*this));
}

std::string classNameOf(const std::type_info& type) {
    const char* mangled = type.name();
    int status = 0;
    char* demangled = abi::__cxa_demangle(mangled, nullptr, nullptr, &status);
    std::string name = status == 0 && demangled ? demangled : mangled;
    std::free(demangled);
    if (auto colon = name.rfind("::"); colon != std::string::npos) name.erase(0, colon + 2);
    return name;
}

std::string Object::description() const {
    return fmt::format("<{}: {}>", className(), static_cast<const void*>(this));
}

}  // namespace kit

#pragma once

#include <memory>
#include <string>
#include <typeinfo>

namespace kit {

// Root of every kit object that has identity. Such objects are always owned by std::shared_ptr;
// "not retained" references to them are std::weak_ptr.
class Object : public std::enable_shared_from_this<Object> {
public:
    virtual ~Object();

    // The dynamic class name without namespace, e.g. "View" or "ZEBBannerView".
    virtual std::string className() const;
    // "<ClassName: 0x...>", as logs show an object.
    virtual std::string description() const;

protected:
    Object() = default;
    Object(const Object&) = default;
    Object& operator=(const Object&) = default;
};

// The name of a class without namespace, as Object::className() gives it for an instance.
std::string classNameOf(const std::type_info& type);
template <class T>
std::string nameOfClass() {
    return classNameOf(typeid(T));
}

// A shared pointer to an object that is already owned by a shared pointer (e.g. `retained(this)`).
template <class T>
std::shared_ptr<T> retained(T* object) {
    if (!object) return nullptr;
    return std::static_pointer_cast<T>(std::const_pointer_cast<Object>(object->shared_from_this()));
}

template <class T>
std::weak_ptr<T> weakly(T* object) {
    return retained(object);
}

}  // namespace kit

#pragma once

#include "kit/Object.h"

#include <memory>

namespace kit {

class Window;

// What an interface file describes: the application's window, its root view controller and the
// views that controller's outlets point at. An application registers its own with ClassRegistry.
class InterfaceFile : public Object {
public:
    static constexpr const char* kMainInterfaceName = "MainInterface";

    virtual std::shared_ptr<Window> instantiateWindow() = 0;
};

}  // namespace kit

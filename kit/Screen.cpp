#include "kit/Screen.h"

#include "kit/port/Platform.h"

namespace kit {

Screen& Screen::main() {
    return Platform::current().screen();
}

}  // namespace kit

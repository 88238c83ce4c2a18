#include "kit/Screen.h"

#include "kit/Platform.h"

namespace kit {

Screen& Screen::main() {
    return Platform::current().screen();
}

}  // namespace kit

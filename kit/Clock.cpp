#include "kit/Clock.h"

#include "kit/port/Platform.h"

namespace kit {

double Clock::secondsSince1970() {
    return Platform::current().secondsSince1970();
}

}  // namespace kit

#include "kit/Device.h"

#include "kit/Platform.h"

namespace kit {

Device& Device::current() { return Platform::current().device(); }

}  // namespace kit

#pragma once

#include "kit/Device.h"

namespace kit::qt {

// Reads what the real system says about the machine into a Device: the machine identifier, the
// product name, the kernel release as system version, the hardware and host names.
class SystemDevice {
public:
    static void fill(Device& device, UserInterfaceIdiom idiom);
    // The raw machine identifier (/etc/machine-id), or empty when the system has none.
    static std::string machineId();
};

}  // namespace kit::qt

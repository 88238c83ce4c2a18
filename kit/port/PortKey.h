#pragma once

namespace kit {

// Opens the calls of kit's public classes that only ports and tests may make (driving the run
// loop, reporting for a web page, filling in the device). Those calls take a PortKey, and only
// this folder defines it: the application and the ad client never include kit/port, which the
// layering test checks.
class PortKey {
public:
    constexpr PortKey() = default;
};

}  // namespace kit

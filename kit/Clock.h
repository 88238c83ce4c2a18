#pragma once

namespace kit {

// The wall clock: real time on the device; in the simulated port, virtual time that starts at
// 2024-01-01 and moves with the run loop's clock.
class Clock {
public:
    static double secondsSince1970();
};

}  // namespace kit

#pragma once

namespace kit {

enum class EventType { Touches = 0, Motion = 1, RemoteControl = 2 };

// What a hit test is asked on behalf of. Hit tests may also be asked with no event at all.
struct Event {
    EventType type = EventType::Touches;
    // Monotonic seconds (RunLoop::now()) when the event happened.
    double timestamp = 0;
};

}  // namespace kit

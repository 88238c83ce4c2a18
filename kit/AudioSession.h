#pragma once

#include <optional>
#include <string>

namespace kit {

// The audio output route: "Speaker", "Headphone", "Headset" or another name of the port the
// sound goes out of.
class AudioSession {
public:
    virtual ~AudioSession();
    static AudioSession& shared();

    // Asked anew on each call. None when there is no sound server to ask or it names no route.
    virtual std::optional<std::string> currentRoute() = 0;
};

}  // namespace kit

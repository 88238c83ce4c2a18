#pragma once

#include "kit/AudioSession.h"

namespace kit::qt {

// The route of the sound server's default output (PulseAudio, or PipeWire's PulseAudio service):
// its active port, named the way the ad client expects ("Speaker", "Headphone", "Headset", else the
// port's description). None when no server answers within a short time.
class PulseAudioSession : public AudioSession {
public:
    std::optional<std::string> currentRoute() override;
};

}  // namespace kit::qt

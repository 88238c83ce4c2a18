#pragma once

#include "kit/AudioSession.h"

namespace kit::sim {

// The route a test says the sound goes out of; none stands for a device without a sound server.
class SimAudioSession : public AudioSession {
public:
    std::optional<std::string> currentRoute() override { return route_; }
    void setCurrentRoute(std::optional<std::string> route) { route_ = std::move(route); }

private:
    std::optional<std::string> route_ = "Speaker";
};

}  // namespace kit::sim

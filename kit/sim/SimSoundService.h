#pragma once

#include "kit/SoundService.h"

#include <map>
#include <string>
#include <vector>

namespace kit::sim {

// Records what would be heard: every play with its virtual time. A clip registers when its file
// exists and is not empty.
class SimSoundService : public SoundService {
public:
    struct Play {
        SoundId id;
        std::string path;  // empty for the vibration and for unknown identifiers
        double time;
    };

    Registration registerClip(const std::string& path) override;
    void play(SoundId id) override;
    void dispose(SoundId id) override;

    const std::vector<Play>& plays() const { return plays_; }
    // Plays that made a sound (registered clips only).
    std::vector<Play> audiblePlays() const;
    size_t vibrations() const;
    size_t registeredCount() const { return clips_.size(); }
    const std::vector<SoundId>& disposed() const { return disposed_; }

private:
    SoundId next_ = 1;
    std::map<SoundId, std::string> clips_;
    std::vector<Play> plays_;
    std::vector<SoundId> disposed_;
};

}  // namespace kit::sim

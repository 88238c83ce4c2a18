#pragma once

#include "kit/Object.h"
#include "kit/SoundService.h"

#include <string>

// One short sound from the application's resources, registered with the sound service once and
// played on demand. A missing or unplayable file leaves the identifier at 0, which plays nothing.
class SoundEffect : public kit::Object {
public:
    // `name` carries its extension, e.g. "Sound3.mp3".
    explicit SoundEffect(const std::string& name);
    ~SoundEffect() override;

    kit::SoundService::SoundId soundID() const { return soundID_; }
    void play();

private:
    kit::SoundService::SoundId soundID_ = 0;
};

#pragma once

#include "kit/SoundService.h"

#include <map>
#include <memory>

struct Mix_Chunk;

namespace kit::qt {

// Clips through SDL2_mixer: each clip is decoded once when registered; each play takes a free
// mixer channel, so plays of one clip overlap. The device is opened with a 256-frame buffer so a
// touch is heard within a few milliseconds.
class SdlSoundService : public SoundService {
public:
    static constexpr int kSampleRate = 44100;
    static constexpr int kBufferFrames = 256;

    SdlSoundService();
    ~SdlSoundService() override;

    Registration registerClip(const std::string& path) override;
    void play(SoundId id) override;
    void dispose(SoundId id) override;

    // False when no audio device could be opened; clips then register but play nothing.
    bool isOpen() const { return open_; }

private:
    Mix_Chunk* vibrationBuzz();

    bool open_ = false;
    int channels_ = 16;
    SoundId next_ = 1;
    std::map<SoundId, Mix_Chunk*> clips_;
    Mix_Chunk* buzz_ = nullptr;
    std::unique_ptr<uint8_t[]> buzzSamples_;
};

}  // namespace kit::qt

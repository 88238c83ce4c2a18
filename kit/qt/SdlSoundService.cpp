#include "kit/qt/SdlSoundService.h"

#include "kit/Log.h"

#include <SDL.h>
#include <SDL_mixer.h>

#include <cmath>
#include <cstring>

namespace kit::qt {

namespace {
// Channels are plentiful: each overlapping play needs one until its clip ends.
constexpr int kMaxChannels = 256;
}  // namespace

SdlSoundService::SdlSoundService() {
    if (SDL_InitSubSystem(SDL_INIT_AUDIO) != 0) {
        Log::format("Sound: no audio ({})", SDL_GetError());
        return;
    }
    Mix_Init(MIX_INIT_MP3);
    if (Mix_OpenAudio(kSampleRate, AUDIO_S16SYS, 2, kBufferFrames) != 0) {
        Log::format("Sound: cannot open the audio device ({})", Mix_GetError());
        SDL_QuitSubSystem(SDL_INIT_AUDIO);
        return;
    }
    Mix_AllocateChannels(channels_);
    open_ = true;
}

SdlSoundService::~SdlSoundService() {
    if (!open_) return;
    Mix_HaltChannel(-1);
    for (auto& [id, chunk] : clips_) Mix_FreeChunk(chunk);
    if (buzz_) Mix_FreeChunk(buzz_);
    Mix_CloseAudio();
    Mix_Quit();
    SDL_QuitSubSystem(SDL_INIT_AUDIO);
}

SoundService::Registration SdlSoundService::registerClip(const std::string& path) {
    if (!open_) return {0, kUnsupportedFile};
    if (SDL_RWops* probe = SDL_RWFromFile(path.c_str(), "rb")) {
        SDL_RWclose(probe);
    } else {
        return {0, kFileNotFound};
    }
    Mix_Chunk* chunk = Mix_LoadWAV(path.c_str());
    if (!chunk) {
        Log::format("Sound: cannot decode {} ({})", path, Mix_GetError());
        return {0, kUnsupportedFile};
    }
    if (next_ == kVibrate) ++next_;
    SoundId id = next_++;
    clips_.emplace(id, chunk);
    return {id, 0};
}

void SdlSoundService::play(SoundId id) {
    if (!open_) return;
    Mix_Chunk* chunk = nullptr;
    if (id == kVibrate) {
        chunk = vibrationBuzz();
    } else if (auto it = clips_.find(id); it != clips_.end()) {
        chunk = it->second;
    }
    if (!chunk) return;
    if (Mix_PlayChannel(-1, chunk, 0) >= 0) return;
    // Every channel is busy: add more rather than cut a clip short.
    if (channels_ < kMaxChannels) {
        channels_ *= 2;
        Mix_AllocateChannels(channels_);
        Mix_PlayChannel(-1, chunk, 0);
    }
}

void SdlSoundService::dispose(SoundId id) {
    auto it = clips_.find(id);
    if (it == clips_.end()) return;
    for (int channel = 0; channel < channels_; ++channel)
        if (Mix_GetChunk(channel) == it->second) Mix_HaltChannel(channel);
    Mix_FreeChunk(it->second);
    clips_.erase(it);
}

// A desktop has no vibrator: the vibration is heard as a short low buzz instead.
Mix_Chunk* SdlSoundService::vibrationBuzz() {
    if (buzz_) return buzz_;
    int frequency = 0, channels = 0;
    Uint16 format = 0;
    if (!Mix_QuerySpec(&frequency, &format, &channels) || format != AUDIO_S16SYS) return nullptr;
    const int frames = frequency * 3 / 10;  // 0.3 s
    const size_t bytes = static_cast<size_t>(frames) * static_cast<size_t>(channels) * sizeof(int16_t);
    buzzSamples_ = std::make_unique<uint8_t[]>(bytes);
    auto* samples = reinterpret_cast<int16_t*>(buzzSamples_.get());
    for (int i = 0; i < frames; ++i) {
        double t = static_cast<double>(i) / frequency;
        double envelope = std::sin(M_PI * i / frames);
        double wave = std::sin(2 * M_PI * 170 * t) > 0 ? 1.0 : -1.0;  // square wave, felt more than heard
        auto sample = static_cast<int16_t>(wave * envelope * 6000);
        for (int c = 0; c < channels; ++c) samples[i * channels + c] = sample;
    }
    buzz_ = Mix_QuickLoad_RAW(buzzSamples_.get(), static_cast<Uint32>(bytes));
    return buzz_;
}

}  // namespace kit::qt

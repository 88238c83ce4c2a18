#include "kit/sim/SimSoundService.h"

#include "kit/RunLoop.h"

#include <filesystem>

namespace kit::sim {

SoundService::Registration SimSoundService::registerClip(const std::string& path) {
    std::error_code ec;
    if (!std::filesystem::exists(path, ec)) return {0, kFileNotFound};
    if (std::filesystem::file_size(path, ec) == 0 || ec) return {0, kUnsupportedFile};
    if (next_ == kVibrate) ++next_;
    SoundId id = next_++;
    clips_.emplace(id, path);
    return {id, 0};
}

void SimSoundService::play(SoundId id) {
    auto it = clips_.find(id);
    plays_.push_back({id, it == clips_.end() ? std::string() : it->second, RunLoop::main().now()});
}

void SimSoundService::dispose(SoundId id) {
    disposed_.push_back(id);
    clips_.erase(id);
}

std::vector<SimSoundService::Play> SimSoundService::audiblePlays() const {
    std::vector<Play> out;
    for (const auto& p : plays_)
        if (!p.path.empty()) out.push_back(p);
    return out;
}

size_t SimSoundService::vibrations() const {
    size_t n = 0;
    for (const auto& p : plays_) n += p.id == kVibrate;
    return n;
}

}  // namespace kit::sim

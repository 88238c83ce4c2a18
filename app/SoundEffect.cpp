#include "app/SoundEffect.h"

#include "kit/FileManager.h"

SoundEffect::SoundEffect(const std::string& name) {
    auto& files = kit::FileManager::defaultManager();
    auto path = files.resourcesFolder() / name;
    if (!files.exists(path)) return;
    auto registration = kit::SoundService::shared().registerClip(path.string());
    if (registration.status == 0) soundID_ = registration.id;
}

SoundEffect::~SoundEffect() {
    kit::SoundService::shared().dispose(soundID_);
}

// The identifier is not checked: 0 (no sound) plays nothing.
void SoundEffect::play() {
    kit::SoundService::shared().play(soundID_);
}

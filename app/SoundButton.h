#pragma once

#include "app/SoundEffect.h"
#include "kit/Button.h"

#include <memory>
#include <string>

// The one kind of button on the soundboard: rounded, half-transparent white with a black title,
// playing its own sound the moment a finger lands on it.
class SoundButton : public kit::Button {
public:
    // Made in code: set up at once.
    explicit SoundButton(kit::Rect frame = {});
    // Made by the interface file, which calls awakeFromNib() once its outlets are connected.
    struct FromInterface {};
    SoundButton(kit::Rect frame, FromInterface);

    void awakeFromNib();
    void setupButton();

    // The same title (colour) in every control state the soundboard uses.
    void setTitle(const std::string& title);
    void setTitleColor(kit::Color color);

    // `name` with its extension, e.g. "Sound3.mp3". Replaces the earlier sound.
    void setupSound(const std::string& name);
    void playSound();
    const std::shared_ptr<SoundEffect>& theSound() const { return theSound_; }

private:
    std::shared_ptr<SoundEffect> theSound_;
};

#include "app/ViewController.h"

#include "app/MainInterface.h"
#include "kit/Application.h"

#include <fmt/format.h>

namespace {
const char* const kTitles[ViewController::kButtonCount] = {
    "Ta-da!",   "Drumroll", "Hooray!", "Oh no!",    "Boing!",    "Wow!",         "Yippee!", "Uh-oh!",
    "Awesome!", "Kaboom!",  "Whoops!", "Good job!", "Surprise!", "Abracadabra!", "Music 1", "Music 2",
};
}  // namespace

ViewController::BannerSlot ViewController::bannerSlotForDevice(const kit::Device& device) {
    if (device.userInterfaceIdiom() == kit::UserInterfaceIdiom::Pad)
        return {"a1f9e8d7c6b5a49", {128.0, 658.0, 768.0, 90.0}};
    return {"a1b2c3d4e5f6a7b", {80.0, 256.0, 320.0, 50.0}};
}

void ViewController::setSoundButton(size_t index, std::shared_ptr<SoundButton> button) {
    soundButtons_.at(index) = std::move(button);
}

void ViewController::loadView() {
    setView(MainInterface::loadSoundboardView(*this));
}

void ViewController::viewDidLoad() {
    kit::ViewController::viewDidLoad();
    setupButtons();
    setupSounds();
}

void ViewController::setupButtons() {
    for (size_t i = 0; i < kButtonCount; ++i)
        if (soundButtons_[i]) soundButtons_[i]->setTitle(kTitles[i]);
}

void ViewController::setupSounds() {
    for (size_t i = 0; i < kButtonCount; ++i)
        if (soundButtons_[i]) soundButtons_[i]->setupSound(fmt::format("Sound{}.mp3", i + 1));
}

bool ViewController::shouldAutorotateToInterfaceOrientation(int orientation) {
    return orientation != kit::InterfaceOrientation::Portrait &&
           orientation != kit::InterfaceOrientation::PortraitUpsideDown;
}

#pragma once

#include "app/SoundButton.h"
#include "kit/Device.h"
#include "kit/ViewController.h"

#include <array>
#include <memory>
#include <string>

// The soundboard's one screen: sixteen sound buttons, laid out by the interface file, and the
// slot along the bottom where the banner goes.
class ViewController : public kit::ViewController {
public:
    static constexpr size_t kButtonCount = 16;

    // Where the banner goes and which ad unit it shows, by the device's idiom. A device that does
    // not know idioms counts as a handset.
    struct BannerSlot {
        std::string adUnitID;
        kit::Rect frame;
    };
    static BannerSlot bannerSlotForDevice(const kit::Device& device);

    // Outlets SoundButton1 ... SoundButton16 (index 0 ... 15), connected by the interface file.
    const std::shared_ptr<SoundButton>& soundButton(size_t index) const { return soundButtons_.at(index); }
    void setSoundButton(size_t index, std::shared_ptr<SoundButton> button);

    void setupButtons();
    void setupSounds();

    // Landscape only: both portrait orientations are refused, every other value accepted.
    bool shouldAutorotateToInterfaceOrientation(int orientation) override;

protected:
    void loadView() override;
    void viewDidLoad() override;

private:
    std::array<std::shared_ptr<SoundButton>, kButtonCount> soundButtons_;
};

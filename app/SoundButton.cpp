#include "app/SoundButton.h"

namespace {
// Every state a title can be set for, in the order they are set.
constexpr uint32_t kStates[] = {kit::ControlState::Normal,   kit::ControlState::Application,
                                kit::ControlState::Disabled, kit::ControlState::Highlighted,
                                kit::ControlState::Reserved, kit::ControlState::Selected};
}  // namespace

SoundButton::SoundButton(kit::Rect frame) : kit::Button(frame) {
    setupButton();
}

SoundButton::SoundButton(kit::Rect frame, FromInterface) : kit::Button(frame) {}

void SoundButton::awakeFromNib() {
    setupButton();
}

void SoundButton::setupButton() {
    setShowsTouchWhenHighlighted(true);
    setBackgroundColor({1.0, 1.0, 1.0, 0.5});
    setTitleColor(kit::Color::black());
    layer().setCornerRadius(8.0);
    layer().setMasksToBounds(true);
    layer().setBorderWidth(1.0);
    // On touch-down, so the sound starts as the finger lands rather than when it lifts. The
    // action is the button's own and never outlives it.
    addActionForControlEvents([this](kit::Control&) { playSound(); }, kit::ControlEvent::TouchDown);
}

void SoundButton::setTitle(const std::string& title) {
    for (uint32_t state : kStates) setTitleForState(title, state);
}

void SoundButton::setTitleColor(kit::Color color) {
    for (uint32_t state : kStates) setTitleColorForState(color, state);
}

void SoundButton::setupSound(const std::string& name) {
    theSound_ = std::make_shared<SoundEffect>(name);
}

void SoundButton::playSound() {
    if (theSound_) theSound_->play();
}

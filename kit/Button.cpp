#include "kit/Button.h"

#include "kit/Image.h"

namespace kit {

Button::Button(Rect frame, ButtonType type) : Control(frame), type_(type) {}

Button::~Button() = default;

std::shared_ptr<Button> Button::buttonWithType(ButtonType type) {
    return std::make_shared<Button>(Rect{}, type);
}

template <class T>
std::optional<T> Button::lookup(const std::map<uint32_t, T>& values, uint32_t state) {
    auto it = values.find(state);
    if (it == values.end()) it = values.find(ControlState::Normal);
    if (it == values.end()) return std::nullopt;
    return it->second;
}

void Button::setTitleForState(std::optional<std::string> title, uint32_t state) {
    if (title) {
        titles_[state] = std::move(*title);
    } else {
        titles_.erase(state);
    }
    notifyPeer(ViewChange::Content);
}

std::optional<std::string> Button::titleForState(uint32_t state) const {
    return lookup(titles_, state);
}

void Button::setTitleColorForState(std::optional<Color> color, uint32_t state) {
    if (color) {
        titleColors_[state] = *color;
    } else {
        titleColors_.erase(state);
    }
    notifyPeer(ViewChange::Content);
}

std::optional<Color> Button::titleColorForState(uint32_t state) const {
    return lookup(titleColors_, state);
}

void Button::setImageForState(std::shared_ptr<Image> image, uint32_t state) {
    if (image) {
        images_[state] = std::move(image);
    } else {
        images_.erase(state);
    }
    notifyPeer(ViewChange::Content);
}

std::shared_ptr<Image> Button::imageForState(uint32_t state) const {
    return lookup(images_, state).value_or(nullptr);
}

Color Button::currentTitleColor() const {
    if (auto color = titleColorForState(state())) return *color;
    return type_ == ButtonType::Custom ? Color::white() : Color{0.196, 0.310, 0.522, 1};
}

void Button::setShowsTouchWhenHighlighted(bool shows) {
    if (showsTouchWhenHighlighted_ == shows) return;
    showsTouchWhenHighlighted_ = shows;
    notifyPeer(ViewChange::Content);
}

}  // namespace kit

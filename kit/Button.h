#pragma once

#include "kit/Color.h"
#include "kit/Control.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace kit {

class Image;

enum class ButtonType { Custom = 0, RoundedRect = 1 };

// A control showing a title and an image. Titles, title colours and images are kept per control
// state (any value of ControlState bits, the application and reserved ones too); a state with
// nothing of its own shows what the normal state has.
class Button : public Control {
public:
    explicit Button(Rect frame = {}, ButtonType type = ButtonType::Custom);
    ~Button() override;

    static std::shared_ptr<Button> buttonWithType(ButtonType type);

    ButtonType buttonType() const { return type_; }

    // None removes the state's own value.
    void setTitleForState(std::optional<std::string> title, uint32_t state);
    std::optional<std::string> titleForState(uint32_t state) const;
    void setTitleColorForState(std::optional<Color> color, uint32_t state);
    std::optional<Color> titleColorForState(uint32_t state) const;
    void setImageForState(std::shared_ptr<Image> image, uint32_t state);
    std::shared_ptr<Image> imageForState(uint32_t state) const;

    // For the current state().
    std::optional<std::string> currentTitle() const { return titleForState(state()); }
    // Without any colour set: white on a custom button, a dark blue on a rounded one.
    Color currentTitleColor() const;
    std::shared_ptr<Image> currentImage() const { return imageForState(state()); }

    // Whether the port shows a glow over the button while it is highlighted.
    bool showsTouchWhenHighlighted() const { return showsTouchWhenHighlighted_; }
    void setShowsTouchWhenHighlighted(bool shows);

private:
    template <class T>
    static std::optional<T> lookup(const std::map<uint32_t, T>& values, uint32_t state);

    ButtonType type_;
    std::map<uint32_t, std::string> titles_;
    std::map<uint32_t, Color> titleColors_;
    std::map<uint32_t, std::shared_ptr<Image>> images_;
    bool showsTouchWhenHighlighted_ = false;
};

}  // namespace kit

#pragma once

#include "kit/Color.h"

namespace kit {

class View;

// The drawing attributes of a view that go beyond its colour: rounded corners, a border and
// clipping. Every view owns exactly one; a change is passed on to the view's peer.
class Layer {
public:
    explicit Layer(View& view) : view_(view) {}
    Layer(const Layer&) = delete;
    Layer& operator=(const Layer&) = delete;

    double cornerRadius() const { return cornerRadius_; }
    void setCornerRadius(double radius);
    double borderWidth() const { return borderWidth_; }
    void setBorderWidth(double width);
    // Opaque black unless set.
    Color borderColor() const { return borderColor_; }
    void setBorderColor(Color color);
    // Clips the view's content and subviews to its bounds (rounded by the corner radius). The
    // same flag as View::clipsToBounds().
    bool masksToBounds() const { return masksToBounds_; }
    void setMasksToBounds(bool masks);

private:
    void changed();

    View& view_;
    double cornerRadius_ = 0;
    double borderWidth_ = 0;
    Color borderColor_ = Color::black();
    bool masksToBounds_ = false;
};

}  // namespace kit

#include "kit/Layer.h"

#include "kit/View.h"

namespace kit {

void Layer::setCornerRadius(double radius) {
    if (cornerRadius_ == radius) return;
    cornerRadius_ = radius;
    changed();
}

void Layer::setBorderWidth(double width) {
    if (borderWidth_ == width) return;
    borderWidth_ = width;
    changed();
}

void Layer::setBorderColor(Color color) {
    if (borderColor_ == color) return;
    borderColor_ = color;
    changed();
}

void Layer::setMasksToBounds(bool masks) {
    if (masksToBounds_ == masks) return;
    masksToBounds_ = masks;
    changed();
}

void Layer::changed() {
    view_.notifyPeer(ViewChange::Layer);
}

}  // namespace kit

#include "kit/ImageView.h"

#include "kit/Image.h"

namespace kit {

ImageView::ImageView(std::shared_ptr<Image> image)
    : View(image ? Rect({0, 0}, image->size()) : Rect()), image_(std::move(image)) {
    setUserInteractionEnabled(false);
}

ImageView::ImageView(Rect frame) : View(frame) {
    setUserInteractionEnabled(false);
}

ImageView::~ImageView() = default;

void ImageView::setImage(std::shared_ptr<Image> image) {
    if (image_ == image) return;
    image_ = std::move(image);
    notifyPeer(ViewChange::Content);
}

}  // namespace kit

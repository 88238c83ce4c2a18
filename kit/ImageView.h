#pragma once

#include "kit/View.h"

#include <memory>

namespace kit {

class Image;

// A view that shows an image, stretched to its bounds. Touches pass through it unless user
// interaction is turned on.
class ImageView : public View {
public:
    // Sized to the image.
    explicit ImageView(std::shared_ptr<Image> image = nullptr);
    explicit ImageView(Rect frame);
    ~ImageView() override;

    const std::shared_ptr<Image>& image() const { return image_; }
    void setImage(std::shared_ptr<Image> image);

private:
    std::shared_ptr<Image> image_;
};

}  // namespace kit

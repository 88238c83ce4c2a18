#pragma once

#include "kit/Geometry.h"
#include "kit/Object.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace kit {

// A picture and its scale (device pixels per point). The image keeps the bytes it was made from;
// the port decodes and draws them. Immutable, so images are shared freely.
class Image : public Object {
public:
    enum class Format { Png, Rgba };

    // From the bytes of a PNG file; the pixel size comes from its header. None when the bytes do
    // not begin like a PNG file.
    static std::shared_ptr<Image> fromPng(std::vector<uint8_t> png, double scale = 1.0);
    // From raw pixels, four bytes (red, green, blue, alpha) each, rows top to bottom. None when
    // the byte count does not match the size.
    static std::shared_ptr<Image> fromRgba(std::vector<uint8_t> pixels, int width, int height,
                                           double scale = 1.0);
    // The same picture at another scale.
    std::shared_ptr<Image> withScale(double scale) const;

    Format format() const { return format_; }
    const std::vector<uint8_t>& bytes() const { return *bytes_; }
    int pixelWidth() const { return width_; }
    int pixelHeight() const { return height_; }
    // A scale that is not positive counts as 1.
    double scale() const { return scale_; }
    // In points: pixels divided by the scale.
    Size size() const { return {width_ / scale_, height_ / scale_}; }

    ~Image() override;

private:
    Image(Format format, std::shared_ptr<const std::vector<uint8_t>> bytes, int width, int height,
          double scale);

    Format format_;
    std::shared_ptr<const std::vector<uint8_t>> bytes_;
    int width_;
    int height_;
    double scale_;
};

}  // namespace kit

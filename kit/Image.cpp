#include "kit/Image.h"

#include <array>
#include <cstring>
#include <limits>

namespace kit {

namespace {

constexpr std::array<uint8_t, 8> kPngSignature{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
// Signature, then the first chunk: length (4), type "IHDR" (4), width (4), height (4).
constexpr size_t kPngHeaderSize = 24;

uint32_t readBigEndian(const uint8_t* p) {
    return uint32_t{p[0]} << 24 | uint32_t{p[1]} << 16 | uint32_t{p[2]} << 8 | uint32_t{p[3]};
}

double validScale(double scale) {
    return scale > 0 ? scale : 1.0;
}

}  // namespace

Image::Image(Format format, std::shared_ptr<const std::vector<uint8_t>> bytes, int width, int height,
             double scale)
    : format_(format), bytes_(std::move(bytes)), width_(width), height_(height), scale_(validScale(scale)) {}

Image::~Image() = default;

std::shared_ptr<Image> Image::fromPng(std::vector<uint8_t> png, double scale) {
    if (png.size() < kPngHeaderSize) return nullptr;
    if (std::memcmp(png.data(), kPngSignature.data(), kPngSignature.size()) != 0) return nullptr;
    // The first chunk must be a 13-byte image header; PNG sizes are positive and below 2^31.
    if (readBigEndian(&png[8]) != 13 || std::memcmp(&png[12], "IHDR", 4) != 0) return nullptr;
    const uint32_t width = readBigEndian(&png[16]);
    const uint32_t height = readBigEndian(&png[20]);
    constexpr uint32_t kMax = std::numeric_limits<int32_t>::max();
    if (width == 0 || height == 0 || width > kMax || height > kMax) return nullptr;
    auto bytes = std::make_shared<const std::vector<uint8_t>>(std::move(png));
    return std::shared_ptr<Image>(
        new Image(Format::Png, std::move(bytes), static_cast<int>(width), static_cast<int>(height), scale));
}

std::shared_ptr<Image> Image::fromRgba(std::vector<uint8_t> pixels, int width, int height, double scale) {
    if (width <= 0 || height <= 0) return nullptr;
    if (pixels.size() / 4 / static_cast<size_t>(width) != static_cast<size_t>(height) ||
        pixels.size() != static_cast<size_t>(width) * static_cast<size_t>(height) * 4) {
        return nullptr;
    }
    auto bytes = std::make_shared<const std::vector<uint8_t>>(std::move(pixels));
    return std::shared_ptr<Image>(new Image(Format::Rgba, std::move(bytes), width, height, scale));
}

std::shared_ptr<Image> Image::withScale(double scale) const {
    return std::shared_ptr<Image>(new Image(format_, bytes_, width_, height_, scale));
}

}  // namespace kit

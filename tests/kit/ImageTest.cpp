#include "kit/Image.h"

#include "kit/ImageView.h"

#include <gtest/gtest.h>

using kit::Image;
using kit::Size;

namespace {

// The start of a PNG file: signature and image header chunk (no CRC check is made on it).
std::vector<uint8_t> pngHeader(uint32_t width, uint32_t height) {
    std::vector<uint8_t> bytes{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n', 0, 0, 0, 13, 'I', 'H', 'D', 'R'};
    for (uint32_t v : {width, height}) {
        for (int shift = 24; shift >= 0; shift -= 8) bytes.push_back(static_cast<uint8_t>(v >> shift));
    }
    // Bit depth 8, colour type 6 (RGBA), compression, filter, interlace, then a CRC.
    for (uint8_t b : {8, 6, 0, 0, 0, 0x12, 0x34, 0x56, 0x78}) bytes.push_back(b);
    return bytes;
}

}  // namespace

TEST(Image, PngSizeComesFromItsHeaderAndScale) {
    auto bytes = pngHeader(50, 30);
    auto image = Image::fromPng(bytes, 2.0);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->pixelWidth(), 50);
    EXPECT_EQ(image->pixelHeight(), 30);
    EXPECT_EQ(image->size(), (Size{25, 15}));
    EXPECT_EQ(image->bytes(), bytes);  // kept whole for the port to decode

    auto standard = image->withScale(1.0);
    EXPECT_EQ(standard->size(), (Size{50, 30}));
    EXPECT_EQ(&standard->bytes(), &image->bytes());  // shared, not copied
    EXPECT_EQ(image->withScale(0)->scale(), 1.0);

    // Large sizes are read as unsigned big-endian numbers.
    auto big = Image::fromPng(pngHeader(0x00012345, 0x7FFFFFFF));
    ASSERT_NE(big, nullptr);
    EXPECT_EQ(big->pixelWidth(), 0x12345);
    EXPECT_EQ(big->pixelHeight(), 0x7FFFFFFF);
}

TEST(Image, BytesOfTheWrongShapeGiveNoImage) {
    auto truncated = pngHeader(10, 10);
    truncated.resize(23);
    auto otherChunkFirst = pngHeader(10, 10);
    otherChunkFirst[12] = 'X';
    for (const auto& bytes :
         {std::vector<uint8_t>{}, truncated, otherChunkFirst, pngHeader(0, 10), pngHeader(10, 0x80000000)}) {
        EXPECT_EQ(Image::fromPng(bytes), nullptr);
    }
    EXPECT_EQ(Image::fromRgba(std::vector<uint8_t>(2 * 3 * 4 - 1), 2, 3), nullptr);
    EXPECT_EQ(Image::fromRgba(std::vector<uint8_t>(2 * 3 * 4 + 4), 2, 3), nullptr);
    auto pixels = Image::fromRgba(std::vector<uint8_t>(2 * 3 * 4), 2, 3, 2.0);
    ASSERT_NE(pixels, nullptr);
    EXPECT_EQ(pixels->size(), (Size{1, 1.5}));
}

TEST(Image, ImageViewTakesTheImageSizeAndLetsTouchesThrough) {
    auto view = std::make_shared<kit::ImageView>(Image::fromPng(pngHeader(50, 50), 2.0));
    EXPECT_EQ(view->frame(), (kit::Rect{0, 0, 25, 25}));
    EXPECT_EQ(view->hitTest({5, 5}, nullptr), nullptr);
}

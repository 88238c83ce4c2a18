#pragma once

#include <optional>
#include <string>
#include <string_view>

// Images and sounds that the house creatives and landing pages use, made by the server itself.
class HouseMedia {
public:
    // The image ad's picture for a banner size ("320x50", "768x90"); none for other sizes.
    static std::optional<std::string> bannerSvg(std::string_view size);
    // A one-second rising tone, 16-bit mono WAV.
    static const std::string& toneWav();
};

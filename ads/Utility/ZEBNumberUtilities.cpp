#include "ads/Utility/ZEBNumberUtilities.h"

#include <fmt/format.h>

std::string ZEBNumberUtilities::stringWithFloat(float value) {
    std::string text = fmt::format("{:f}", static_cast<double>(value));
    // Only a text with a point has decimals to trim ("inf" and "nan" have none).
    if (text.find('.') == std::string::npos) return text;
    while (!text.empty() && text.back() == '0') text.pop_back();
    if (!text.empty() && text.back() == '.') text.pop_back();
    return text;
}

#include "ads/Utility/ZEBLocation.h"

#include "ads/ThirdParty/KBLStringEncoding.h"
#include "ads/Utility/ZEBDeployment.h"
#include "kit/Clock.h"

#include <fmt/format.h>

#include <cmath>
#include <limits>

namespace {
constexpr float kEpsilon = 1.1920929e-7f;
constexpr const char* kRecordHead =
    "role: 6 producer: 24 historical_role: 1 historical_producer: 12 timestamp: ";

std::string webSafeBase64(std::span<const uint8_t> bytes) {
    auto encoding = KBLStringEncoding::rfc4648Base64WebsafeStringEncoding();
    encoding->setDoPad(false);
    return encoding->encode(bytes);
}

double now() {
    return kit::Clock::secondsSince1970();
}
}  // namespace

ZEBLocation::ZEBLocation(Token, float latitude, float longitude, float accuracy,
                         std::optional<std::string> text)
    : latitude_(latitude),
      longitude_(longitude),
      accuracy_(accuracy),
      timestamp_(now()),
      text_(std::move(text)) {}

std::shared_ptr<ZEBLocation> ZEBLocation::createWithLatitudeLongitudeAccuracy(float latitude, float longitude,
                                                                              float accuracy) {
    auto location = std::make_shared<ZEBLocation>(Token{}, latitude, longitude, accuracy, std::nullopt);
    return location->isPreciseLocation() ? location : nullptr;
}

std::shared_ptr<ZEBLocation> ZEBLocation::createWithDescription(std::string_view description) {
    if (description.empty()) return nullptr;
    return std::make_shared<ZEBLocation>(Token{}, 0.0f, 0.0f, 0.0f, std::string(description));
}

bool ZEBLocation::isPreciseLocation() const {
    float lat = std::fabs(latitude_), lng = std::fabs(longitude_);
    return lat <= 90.0f && lng <= 180.0f && lat > kEpsilon && lng > kEpsilon;
}

std::string ZEBLocation::description() const {
    if (text_) return *text_;
    if (isPreciseLocation()) return fmt::format("{:f},{:f}", latitude_, longitude_);
    return "";
}

bool ZEBLocation::isEqual(const kit::Object* other) const {
    auto* location = dynamic_cast<const ZEBLocation*>(other);
    if (!location || location->isPreciseLocation() != isPreciseLocation()) return false;
    if (!isPreciseLocation()) return description() == location->description();
    return std::fabs(latitude_ - location->latitude_) < kEpsilon &&
           std::fabs(longitude_ - location->longitude_) < kEpsilon &&
           std::fabs(accuracy_ - location->accuracy_) < kEpsilon;
}

std::shared_ptr<ZEBLocation> ZEBLocation::copy() const {
    auto location = std::make_shared<ZEBLocation>(Token{}, latitude_, longitude_, accuracy_, text_);
    location->timestamp_ = timestamp_;
    return location;
}

int32_t ZEBLocation::saturatingInt32(double value) {
    if (std::isnan(value)) return 0;
    if (value >= static_cast<double>(std::numeric_limits<int32_t>::max()))
        return std::numeric_limits<int32_t>::max();
    if (value <= static_cast<double>(std::numeric_limits<int32_t>::min()))
        return std::numeric_limits<int32_t>::min();
    return static_cast<int32_t>(value);
}

std::string ZEBLocation::textRecord() const {
    std::string text = description();
    for (char& c : text) {
        if (c == '"') c = '\'';
    }
    return fmt::format("{}{:.0f} loc: \"{}\"", kRecordHead, timestamp_ * 1000000.0, text);
}

std::string ZEBLocation::coordinateRecord() const {
    return fmt::format("{}{:.0f} latlng <latitude_e7: {} longitude_e7: {}> radius: {}", kRecordHead,
                       timestamp_ * 1000000.0, saturatingInt32(double{latitude_} * 10000000.0),
                       saturatingInt32(double{longitude_} * 10000000.0),
                       saturatingInt32(double{accuracy_} * 1000.0));
}

std::optional<std::string> ZEBLocation::oolongRepresentation() const {
    return oolongRepresentationWithKey(ZEBDeployment::current().locationKey);
}

std::optional<std::string> ZEBLocation::oolongRepresentationWithKey(const kit::Crypto::Aes128Key& key) const {
    if (!isPreciseLocation()) {
        std::string record = textRecord();
        return "a+" +
               webSafeBase64(std::span(reinterpret_cast<const uint8_t*>(record.data()), record.size()));
    }
    std::string record = coordinateRecord();
    std::vector<uint8_t> padded(record.begin(), record.end());
    // Always 1 to 16 bytes, each holding the count, so that the reader knows what to strip.
    auto n = static_cast<uint8_t>(16 - padded.size() % 16);
    padded.insert(padded.end(), n, n);

    // The vector: the timestamp times 1, 2, 3 and 4, as saturated 32-bit words, little-endian.
    kit::Crypto::Aes128Iv iv{};
    for (int word = 0; word < 4; ++word) {
        auto bits = static_cast<uint32_t>(saturatingInt32(timestamp_ * (word + 1)));
        for (int b = 0; b < 4; ++b) iv[word * 4 + b] = static_cast<uint8_t>(bits >> (8 * b));
    }
    std::optional<std::vector<uint8_t>> cipher = kit::Crypto::aes128CbcEncrypt(padded, key, iv);
    if (!cipher) return std::nullopt;
    std::vector<uint8_t> output(iv.begin(), iv.end());
    output.insert(output.end(), cipher->begin(), cipher->end());
    return "e1+" + webSafeBase64(output);
}

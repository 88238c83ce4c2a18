#pragma once

#include "kit/Crypto.h"
#include "kit/Object.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

// Where the user is, as coordinates or free text, with the moment it was given. Coordinates
// travel enciphered, text only encoded.
class ZEBLocation : public kit::Object {
    struct Token {};

public:
    // Null unless the coordinates are precise.
    static std::shared_ptr<ZEBLocation> createWithLatitudeLongitudeAccuracy(float latitude, float longitude,
                                                                            float accuracy);
    // Null for empty text.
    static std::shared_ptr<ZEBLocation> createWithDescription(std::string_view description);

    ZEBLocation(Token, float latitude, float longitude, float accuracy, std::optional<std::string> text);

    float latitude() const { return latitude_; }
    float longitude() const { return longitude_; }
    float accuracy() const { return accuracy_; }
    // Seconds since 1970 when the value was made.
    double timestamp() const { return timestamp_; }
    void setTimestamp(double timestamp) { timestamp_ = timestamp; }

    // Within the globe and off both zero axes (an exact 0 counts as unset).
    bool isPreciseLocation() const;
    // The text, else "lat,lng" with six decimals when precise, else "".
    std::string description() const override;
    // Timestamps are not compared.
    bool isEqual(const kit::Object* other) const;
    // Made the same way, with this one's timestamp.
    std::shared_ptr<ZEBLocation> copy() const;

    // The "uule" text: "a+" and the encoded record for text, "e1+" and the enciphered record for
    // coordinates; none when encipherment fails.
    std::optional<std::string> oolongRepresentation() const;
    std::optional<std::string> oolongRepresentationWithKey(const kit::Crypto::Aes128Key& key) const;

    // The plain records, before encoding or encipherment.
    std::string textRecord() const;
    std::string coordinateRecord() const;

    // Toward zero, saturating at the limits of a signed 32-bit integer (NaN gives 0).
    static int32_t saturatingInt32(double value);

private:
    float latitude_ = 0;
    float longitude_ = 0;
    float accuracy_ = 0;
    double timestamp_ = 0;
    std::optional<std::string> text_;
};

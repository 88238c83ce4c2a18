#pragma once

#include "ads/Request/ZEBRequest.h"
#include "ads/Utility/ZEBLocation.h"

#include <cstdint>

enum ZEBRequestType {
    ZEBRequestTypeUnknown = 0,
    ZEBRequestTypeLumet = 1,
    ZEBRequestTypePelko = 4,
    ZEBRequestTypeZqp = 5
};

// The request as the ad object uses it: the location, the full-screen switch, the request's
// ordinal, and the parameter map that goes to the ad server.
class ZEBRequestPrivate : public ZEBRequest {
public:
    ZEBRequestPrivate() = default;
    // Shares the other request's values (the keyword list itself included); the counter starts at 0.
    explicit ZEBRequestPrivate(const ZEBRequest& request);

    static int requestTypeFromString(std::string_view word);
    // Compares the system's version by major, then minor.
    static bool deviceAtLeastMinimumOSMajorVersionMinorVersion(int major, int minor);

    const std::shared_ptr<ZEBLocation>& location() const { return location_; }
    void setLocation(std::shared_ptr<ZEBLocation> location) { location_ = std::move(location); }
    bool interstitialAd() const { return interstitialAd_; }
    void setInterstitialAd(bool interstitial) { interstitialAd_ = interstitial; }
    int32_t counter() const { return counter_; }
    void setCounter(int32_t counter) { counter_ = counter; }

    void setBirthdayWithMonthDayYear(int month, int day, int year) override;
    void setLocationWithLatitudeLongitudeAccuracy(float latitude, float longitude, float accuracy) override;
    void setLocationWithDescription(std::string_view description) override;
    void addKeyword(std::string_view keyword) override;

    bool isATestDevice() const;
    std::optional<std::string> genderString() const;
    // "yyyyMMdd".
    std::optional<std::string> birthdayString() const;
    // The signals collector's one "key=value" pair, or an empty map.
    kit::Value::Map spamSignals() const;
    kit::Value::Map parameters() const;
    std::string description() const override;

private:
    std::shared_ptr<ZEBLocation> location_;
    bool interstitialAd_ = false;
    int32_t counter_ = 0;
};

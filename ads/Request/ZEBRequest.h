#pragma once

#include "kit/Object.h"
#include "kit/Value.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

enum ZEBGender { ZEBGenderUnknown = 0, ZEBGenderMale = 1, ZEBGenderFemale = 2 };

// What the application wants shown: targeting hints, test devices and extra parameters. Every
// request is made as a ZEBRequestPrivate, which carries the rest and builds the parameters.
class ZEBRequest : public kit::Object {
public:
    using Keywords = std::vector<std::string>;

    // A new, empty request (a ZEBRequestPrivate).
    static std::shared_ptr<ZEBRequest> request();
    // "quor-sdk-i-v5.0.5".
    static const std::string& sdkVersion();
    // A copy made with the private class's copying constructor.
    std::shared_ptr<ZEBRequest> copy() const;

    // The keyword list is shared, not duplicated, by copies.
    const std::shared_ptr<Keywords>& keywords() const { return keywords_; }
    void setKeywords(std::shared_ptr<Keywords> keywords) { keywords_ = std::move(keywords); }
    const std::optional<kit::Value::Date>& birthday() const { return birthday_; }
    void setBirthday(std::optional<kit::Value::Date> birthday) { birthday_ = birthday; }
    int gender() const { return gender_; }
    void setGender(int gender) { gender_ = gender; }
    // Deprecated: testDevices says which devices get test ads.
    bool testing() const { return testing_; }
    void setTesting(bool testing) { testing_ = testing; }
    const std::optional<std::vector<std::string>>& testDevices() const { return testDevices_; }
    void setTestDevices(std::optional<std::vector<std::string>> devices) {
        testDevices_ = std::move(devices);
    }
    const std::optional<kit::Value::Map>& additionalParameters() const { return additionalParameters_; }
    void setAdditionalParameters(std::optional<kit::Value::Map> parameters) {
        additionalParameters_ = std::move(parameters);
    }

    // Midnight UTC of the Gregorian date; out-of-range components carry over as the calendar
    // does (month 13 is January of the next year, day 0 the last day of the month before).
    virtual void setBirthdayWithMonthDayYear(int month, int day, int year) = 0;
    // No location unless the coordinates are precise.
    virtual void setLocationWithLatitudeLongitudeAccuracy(float latitude, float longitude,
                                                          float accuracy) = 0;
    // No location for empty text.
    virtual void setLocationWithDescription(std::string_view description) = 0;
    // An empty keyword is ignored.
    virtual void addKeyword(std::string_view keyword) = 0;

protected:
    ZEBRequest() = default;

private:
    std::shared_ptr<Keywords> keywords_;
    std::optional<kit::Value::Date> birthday_;
    int gender_ = ZEBGenderUnknown;
    bool testing_ = false;
    std::optional<std::vector<std::string>> testDevices_;
    std::optional<kit::Value::Map> additionalParameters_;
};

#include "ads/Request/ZEBRequestPrivate.h"

#include "ads/Network/ZEBNetworkChecker.h"
#include "ads/Request/ZEBRequestParameters.h"
#include "ads/Signals/ZEBSignalsCollector.h"
#include "ads/Statistics/ZEBStatistics.h"
#include "ads/Utility/ZEBIdentifierUtilities.h"
#include "kit/Log.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace {
// Days since 1970-01-01 of a proleptic Gregorian date (month 1...12).
int64_t daysFromCivil(int64_t y, int64_t m, int64_t d) {
    y -= m <= 2;
    const int64_t era = (y >= 0 ? y : y - 399) / 400;
    const int64_t yoe = y - era * 400;
    const int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + doe - 719468;
}

struct Civil {
    int64_t year, month, day;
};

Civil civilFromDays(int64_t z) {
    z += 719468;
    const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const int64_t doe = z - era * 146097;
    const int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const int64_t mp = (5 * doy + 2) / 153;
    const int64_t d = doy - (153 * mp + 2) / 5 + 1;
    const int64_t m = mp + (mp < 10 ? 3 : -9);
    return {era * 400 + yoe + (m <= 2), m, d};
}

constexpr double kSecondsPerDay = 86400.0;
}  // namespace

ZEBRequestPrivate::ZEBRequestPrivate(const ZEBRequest& request) {
    setTestDevices(request.testDevices());
    setTesting(request.testing());
    setAdditionalParameters(request.additionalParameters());
    setGender(request.gender());
    setBirthday(request.birthday());
    auto* other = dynamic_cast<const ZEBRequestPrivate*>(&request);
    if (other) location_ = other->location_;
    setKeywords(request.keywords());
    if (other) interstitialAd_ = other->interstitialAd_;
}

int ZEBRequestPrivate::requestTypeFromString(std::string_view word) {
    if (word == "pelko") return ZEBRequestTypePelko;
    if (word == "zqp") return ZEBRequestTypeZqp;
    if (word == "lumet") return ZEBRequestTypeLumet;
    return ZEBRequestTypeUnknown;
}

bool ZEBRequestPrivate::deviceAtLeastMinimumOSMajorVersionMinorVersion(int major, int minor) {
    auto version = ZEBIdentifierUtilities::getOSMajorMinorBugFix();
    if (version.major != major) return version.major > major;
    return version.minor >= minor;
}

void ZEBRequestPrivate::setBirthdayWithMonthDayYear(int month, int day, int year) {
    // Carry whole years out of the month first, then let the day run over months as it will.
    int64_t m = int64_t{month} - 1;
    int64_t y = int64_t{year} + (m >= 0 ? m / 12 : (m - 11) / 12);
    m -= (m >= 0 ? m / 12 : (m - 11) / 12) * 12;
    int64_t days = daysFromCivil(y, m + 1, 1) + (int64_t{day} - 1);
    setBirthday(kit::Value::Date{static_cast<double>(days) * kSecondsPerDay});
}

void ZEBRequestPrivate::setLocationWithLatitudeLongitudeAccuracy(float latitude, float longitude,
                                                                 float accuracy) {
    location_ = ZEBLocation::createWithLatitudeLongitudeAccuracy(latitude, longitude, accuracy);
}

void ZEBRequestPrivate::setLocationWithDescription(std::string_view description) {
    location_ = ZEBLocation::createWithDescription(description);
}

void ZEBRequestPrivate::addKeyword(std::string_view keyword) {
    if (keyword.empty()) return;
    if (!keywords()) setKeywords(std::make_shared<Keywords>());
    keywords()->emplace_back(keyword);
}

bool ZEBRequestPrivate::isATestDevice() const {
    if (!testDevices()) return false;
    std::string device = ZEBIdentifierUtilities::deviceIdentifierOrSimulator();
    return std::find(testDevices()->begin(), testDevices()->end(), device) != testDevices()->end();
}

std::optional<std::string> ZEBRequestPrivate::genderString() const {
    if (gender() == ZEBGenderMale) return "1";
    if (gender() == ZEBGenderFemale) return "2";
    return std::nullopt;
}

std::optional<std::string> ZEBRequestPrivate::birthdayString() const {
    if (!birthday() || !std::isfinite(birthday()->secondsSince1970)) return std::nullopt;
    double days = std::floor(birthday()->secondsSince1970 / kSecondsPerDay);
    // Far beyond any calendar a birthday can name: no text rather than an overflow.
    if (std::fabs(days) > 1e12) return std::nullopt;
    Civil date = civilFromDays(static_cast<int64_t>(days));
    // The pattern's year is the year of the era: 1 BC is year 1.
    int64_t year = date.year > 0 ? date.year : 1 - date.year;
    return fmt::format("{:04}{:02}{:02}", year, date.month, date.day);
}

kit::Value::Map ZEBRequestPrivate::spamSignals() const {
    std::string text = ZEBSignalsCollector::shared().requestSignals();
    size_t equals = text.find('=');
    if (equals == std::string::npos) return {};
    std::string key = text.substr(0, equals);
    std::string value = text.substr(equals + 1);
    value = value.substr(0, value.find('='));
    if (value.empty()) return {};
    return kit::Value::Map{{key, value}};
}

kit::Value::Map ZEBRequestPrivate::parameters() const {
    kit::Value::Map p = ZEBIdentifierUtilities::sharedInstance().parameters();
    p.set(kZEBParameterSDKVersion, sdkVersion());
    if (auto net = ZEBNetworkChecker::sharedChecker().networkTypeString())
        p.set(kZEBParameterNetworkType, *net);
    if (testing()) {
        kit::Log::write("<Vantor> \"testing\" property has been deprecated.  Use \"testDevices\" instead.");
        p.set(kZEBParameterTesting, "1");
    }
    if (isATestDevice()) p.set(kZEBParameterTestMode, "on");
    if (additionalParameters()) p.set(kZEBParameterExtraParams, *additionalParameters());
    if (auto gender = genderString()) p.set(kZEBParameterGender, *gender);
    if (auto birthday = birthdayString()) p.set(kZEBParameterBirthday, *birthday);
    if (keywords()) p.set(kZEBParameterKeywords, kit::Value::Array(keywords()->begin(), keywords()->end()));
    if (location_) {
        if (auto uule = location_->oolongRepresentation()) p.set(kZEBParameterLocation, *uule);
    }
    for (auto& [key, value] : ZEBStatistics::sharedStatistics().parameters()) p.set(key, std::move(value));
    p.set(kZEBParameterTotalAdRequests, counter_);
    return p;
}

std::string ZEBRequestPrivate::description() const {
    const char* genderPart = gender() == ZEBGenderMale     ? "\ngender:Male"
                             : gender() == ZEBGenderFemale ? "\ngender:Female"
                                                           : "";
    std::string text =
        fmt::format("{}<{}>: {}", kit::nameOfClass<ZEBRequest>(), static_cast<const void*>(this), genderPart);
    if (birthday()) text += "\nbirthday:" + kit::Value(*birthday()).description();
    if (location_) text += "\nlocation:" + location_->description();
    if (keywords()) {
        text += "\nkeywords:" +
                kit::Value(kit::Value::Array(keywords()->begin(), keywords()->end())).description();
    }
    if (additionalParameters())
        text += "\nadditionalParameters:" + kit::Value(*additionalParameters()).description();
    return text;
}

#include "ads/Request/ZEBRequest.h"

#include "ads/Request/ZEBRequestParameters.h"
#include "ads/Request/ZEBRequestPrivate.h"
#include "ads/Statistics/ZEBStatistics.h"
#include "kit/Log.h"
#include "tests/support/AdContextTest.h"

#include <set>

using kit::Value;

namespace {
std::set<std::string> keysOf(const Value::Map& map) {
    std::set<std::string> keys;
    for (const auto& [key, value] : map) keys.insert(key);
    return keys;
}

std::shared_ptr<ZEBRequestPrivate> makeRequest() {
    return std::static_pointer_cast<ZEBRequestPrivate>(ZEBRequest::request());
}

const std::set<std::string> kIdentifierKeys{"ios_metadata", "ios_base_sdk", "app_name", "isu",
                                            "platform",     "submodel",     "hl",       "u_audio",
                                            "u_so",         "u_sd",         "u_w",      "u_h"};
}  // namespace

class ZEBRequestTest : public AdContextTest {};

TEST_F(ZEBRequestTest, FreshRequestCarriesIdentifiersVersionSessionAndCounter) {
    auto request = makeRequest();
    Value::Map p = request->parameters();
    std::set<std::string> expected = kIdentifierKeys;
    expected.insert({"js", "session_id", "preqs"});
    EXPECT_EQ(keysOf(p), expected);
    EXPECT_EQ(*p.find("js"), Value("quor-sdk-i-v5.0.5"));
    EXPECT_EQ(*p.find("preqs"), Value(0));
    EXPECT_EQ(*p.find("app_name"), Value("1.0.iphone.org.quiblo.soundboard"));

    // Once the network has reported, its type travels too; a report without reachability drops it.
    sim().network().setFlags(kit::Reachability::kReachable);
    runUntilIdle();
    EXPECT_EQ(*request->parameters().find("net"), Value("wi"));
    sim().network().setFlags(0);
    runUntilIdle();
    EXPECT_FALSE(request->parameters().contains("net"));
}

TEST_F(ZEBRequestTest, TargetingHintsBecomeTheirKeys) {
    auto request = makeRequest();
    request->setGender(ZEBGenderFemale);
    request->setBirthdayWithMonthDayYear(2, 29, 1990);
    request->addKeyword("a");
    request->addKeyword("");
    request->setAdditionalParameters(Value::Map{{"color", "red"}});
    request->setLocationWithDescription("Berlin");
    request->setCounter(7);
    ZEBStatistics::sharedStatistics().setAdRequestCount(3);  // the request's own counter wins
    Value::Map p = request->parameters();
    EXPECT_EQ(*p.find("cust_gender"), Value("2"));
    EXPECT_EQ(*p.find("cust_age"), Value("19900301")) << "1990 has no 29 February";
    EXPECT_EQ(*p.find("kw"), Value(Value::Array{"a"}));
    EXPECT_EQ(*p.find("extras"), Value(Value::Map{{"color", "red"}}));
    EXPECT_TRUE(p.find("uule")->string()->starts_with("a+"));
    EXPECT_EQ(*p.find("preqs"), Value(7));

    for (int gender : {0, 3, -1}) {
        request->setGender(gender);
        EXPECT_FALSE(request->parameters().contains("cust_gender")) << gender;
    }
    request->setGender(ZEBGenderMale);
    EXPECT_EQ(request->genderString(), "1");
}

TEST_F(ZEBRequestTest, BirthdayComponentsCarryOverAsTheCalendarDoes) {
    auto request = makeRequest();
    struct Case {
        int month, day, year;
        const char* text;
    } cases[] = {{2, 29, 2000, "20000229"},
                 {13, 1, 1999, "20000101"},
                 {1, 0, 2000, "19991231"},
                 {-11, 1, 2000, "19990101"},
                 {6, 1, 0, "00010601"}};  // year 0 is 1 BC, written as the year of its era
    for (const auto& c : cases) {
        request->setBirthdayWithMonthDayYear(c.month, c.day, c.year);
        EXPECT_EQ(request->birthdayString(), c.text) << c.month << "/" << c.day << "/" << c.year;
    }
    request->setBirthday(Value::Date{std::numeric_limits<double>::infinity()});
    EXPECT_EQ(request->birthdayString(), std::nullopt);
    EXPECT_FALSE(request->parameters().contains("cust_age"));
}

TEST_F(ZEBRequestTest, TestDevicesAndTheDeprecatedSwitch) {
    auto request = makeRequest();
    request->setTestDevices(std::vector<std::string>{"other", sim().device().uniqueIdentifier()});
    kit::Log::Capture log;
    request->setTesting(true);
    Value::Map p = request->parameters();
    EXPECT_EQ(*p.find("adtest"), Value("on"));
    EXPECT_EQ(*p.find("testing"), Value("1"));
    request->parameters();
    EXPECT_EQ(log.lines(), std::vector<std::string>(2,
                                                    "<Vantor> \"testing\" property has been deprecated.  Use "
                                                    "\"testDevices\" instead."));
    request->setTestDevices(std::vector<std::string>{"SIM-DEVICE-0001"});
    EXPECT_FALSE(request->isATestDevice()) << "identifiers compare exactly";
}

TEST_F(ZEBRequestTest, CopySharesValuesButNotTheCounter) {
    auto request = makeRequest();
    request->addKeyword("k");
    request->setLocationWithLatitudeLongitudeAccuracy(1.5f, 2.5f, 3);
    request->setInterstitialAd(true);
    request->setCounter(9);
    auto copy = std::static_pointer_cast<ZEBRequestPrivate>(request->copy());
    EXPECT_EQ(copy->counter(), 0);
    EXPECT_TRUE(copy->interstitialAd());
    EXPECT_EQ(copy->location(), request->location());
    request->addKeyword("shared");
    EXPECT_EQ(copy->keywords()->size(), 2u) << "the keyword list itself is shared";
    request->setLocationWithLatitudeLongitudeAccuracy(0, 2.5f, 3);
    EXPECT_EQ(request->location(), nullptr);
}

TEST_F(ZEBRequestTest, SpamSignalsTakeOnlyAKeyWithAValue) {
    auto signals = std::make_shared<ScriptedSignals>();
    ZEBSignalsCollector::setShared(signals);
    auto request = makeRequest();
    signals->requestText = "k=v=w";
    EXPECT_EQ(request->spamSignals(), (Value::Map{{"k", "v"}}));
    for (const char* text : {"k=", "k", ""}) {
        signals->requestText = text;
        EXPECT_TRUE(request->spamSignals().empty()) << text;
    }
}

TEST_F(ZEBRequestTest, TypeWordsAndVersionCheck) {
    EXPECT_EQ(ZEBRequestPrivate::requestTypeFromString("pelko"), 4);
    EXPECT_EQ(ZEBRequestPrivate::requestTypeFromString("zqp"), 5);
    EXPECT_EQ(ZEBRequestPrivate::requestTypeFromString("lumet"), 1);
    EXPECT_EQ(ZEBRequestPrivate::requestTypeFromString("Pelko"), 0);
    EXPECT_EQ(ZEBRequestPrivate::requestTypeFromString("tessar"), 0);
    sim().device().setSystemVersion(kPort, "3.0");
    EXPECT_TRUE(ZEBRequestPrivate::deviceAtLeastMinimumOSMajorVersionMinorVersion(3, 0));
    sim().device().setSystemVersion(kPort, "2.9.9");
    EXPECT_FALSE(ZEBRequestPrivate::deviceAtLeastMinimumOSMajorVersionMinorVersion(3, 0));
}

#include "ads/Utility/ZEBLocation.h"

#include "ads/ThirdParty/KBLStringEncoding.h"
#include "ads/Utility/ZEBDeployment.h"
#include "kit/Crypto.h"
#include "tests/support/SimTest.h"

#include <cmath>
#include <limits>

namespace {
// What the ad server does with "uule": undo the encoding, and for coordinates the encipherment.
struct Decoded {
    std::string record;
    std::array<uint8_t, 16> iv{};
};

std::optional<Decoded> decodeUule(std::string_view uule, const kit::Crypto::Aes128Key& key) {
    auto base64 = KBLStringEncoding::rfc4648Base64WebsafeStringEncoding();
    if (uule.starts_with("a+")) return Decoded{base64->stringByDecoding(uule.substr(2)).value_or("?"), {}};
    auto bytes = base64->decode(uule.substr(3));
    if (!uule.starts_with("e1+") || !bytes || bytes->size() < 32) return std::nullopt;
    Decoded decoded;
    std::copy_n(bytes->begin(), 16, decoded.iv.begin());
    auto plain = kit::Crypto::aes128CbcDecrypt(std::span(*bytes).subspan(16), key, decoded.iv);
    if (!plain) return std::nullopt;
    // 1 to 16 bytes of padding, each holding the count.
    auto n = static_cast<std::ptrdiff_t>(plain->back());
    if (n < 1 || n > 16 || std::count(plain->end() - n, plain->end(), plain->back()) != n)
        return std::nullopt;
    decoded.record.assign(plain->begin(), plain->end() - n);
    return decoded;
}

int32_t littleEndianWord(const std::array<uint8_t, 16>& bytes, int word) {
    uint32_t v = 0;
    for (int b = 0; b < 4; ++b) v |= uint32_t{bytes[word * 4 + b]} << (8 * b);
    return static_cast<int32_t>(v);
}

const kit::Crypto::Aes128Key& key() {
    return ZEBDeployment::current().locationKey;
}
}  // namespace

class ZEBLocationTest : public SimTest {};

TEST_F(ZEBLocationTest, PrecisenessRefusesZeroAndOutOfRangeCoordinates) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (auto [latitude, longitude] :
         {std::pair{0.0f, 10.0f}, {10.0f, 0.0f}, {90.5f, 10.0f}, {10.0f, -180.5f}, {nan, 1.0f}})
        EXPECT_EQ(ZEBLocation::createWithLatitudeLongitudeAccuracy(latitude, longitude, 5), nullptr)
            << latitude << "," << longitude;
    auto corner = ZEBLocation::createWithLatitudeLongitudeAccuracy(90.0f, -180.0f, 0);
    ASSERT_TRUE(corner);
    EXPECT_EQ(corner->description(), "90.000000,-180.000000");
    EXPECT_EQ(ZEBLocation::createWithDescription(""), nullptr);
}

TEST_F(ZEBLocationTest, EqualityIgnoresTimestampAndCopyKeepsIt) {
    auto a = ZEBLocation::createWithLatitudeLongitudeAccuracy(37.422f, -122.084f, 50);
    advance(1);
    auto b = ZEBLocation::createWithLatitudeLongitudeAccuracy(37.422f, -122.084f, 50);
    EXPECT_EQ(b->timestamp() - a->timestamp(), 1.0);
    EXPECT_TRUE(a->isEqual(b.get()));
    EXPECT_FALSE(a->isEqual(ZEBLocation::createWithLatitudeLongitudeAccuracy(37.422f, -122.084f, 51).get()));
    auto text = ZEBLocation::createWithDescription("Berlin");
    EXPECT_FALSE(a->isEqual(text.get()));
    EXPECT_TRUE(text->isEqual(ZEBLocation::createWithDescription("Berlin").get()));
    EXPECT_FALSE(text->isEqual(ZEBLocation::createWithDescription("Bern").get()));
    advance(5);
    auto copy = a->copy();
    EXPECT_EQ(copy->timestamp(), a->timestamp());
    EXPECT_TRUE(copy->isEqual(a.get()));
    EXPECT_EQ(text->copy()->description(), "Berlin");
}

TEST_F(ZEBLocationTest, FreeTextIsEncodedWithQuotesReplaced) {
    auto location = ZEBLocation::createWithDescription("Main St \"5\"");
    location->setTimestamp(1300000000.25);
    auto uule = location->oolongRepresentation();
    ASSERT_TRUE(uule);
    EXPECT_EQ(uule->find('='), std::string::npos) << "no padding";
    auto decoded = decodeUule(*uule, key());
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->record,
              "role: 6 producer: 24 historical_role: 1 historical_producer: 12 timestamp: 1300000000250000 "
              "loc: \"Main St '5'\"");
}

TEST_F(ZEBLocationTest, CoordinatesAreEncipheredAndDecipherBackToTheRecord) {
    auto location = ZEBLocation::createWithLatitudeLongitudeAccuracy(37.422f, -122.084f, 50);
    location->setTimestamp(1300000000.5);
    auto uule = location->oolongRepresentation();
    ASSERT_TRUE(uule);
    ASSERT_TRUE(uule->starts_with("e1+"));
    auto decoded = decodeUule(*uule, key());
    ASSERT_TRUE(decoded);
    // The float nearest 37.422 is 37.42200088..., the one nearest -122.084 is -122.08399963...
    EXPECT_EQ(decoded->record,
              "role: 6 producer: 24 historical_role: 1 historical_producer: 12 timestamp: 1300000000500000 "
              "latlng <latitude_e7: 374220008 longitude_e7: -1220839996> radius: 50000");
    EXPECT_EQ(littleEndianWord(decoded->iv, 0), 1300000000);
    for (int word = 1; word < 4; ++word) EXPECT_EQ(littleEndianWord(decoded->iv, word), 2147483647);

    kit::Crypto::Aes128Key wrong = key();
    wrong[0] ^= 1;
    auto garbled = decodeUule(*uule, wrong);
    EXPECT_TRUE(!garbled || garbled->record != decoded->record);
}

TEST_F(ZEBLocationTest, RecordLengthsOnABlockBoundaryGetAWholeBlockOfPadding) {
    // Accuracies with more digits lengthen the record one byte at a time: one of 16 lengths is a
    // multiple of the block, and every one must come back whole.
    for (int digits = 0; digits < 16; ++digits) {
        float accuracy = static_cast<float>(std::pow(10.0, digits % 7));
        auto probe = ZEBLocation::createWithLatitudeLongitudeAccuracy(1.5f, 2.5f + digits, accuracy);
        probe->setTimestamp(1e9 + digits);
        auto decoded = decodeUule(*probe->oolongRepresentation(), key());
        ASSERT_TRUE(decoded) << digits;
        EXPECT_EQ(decoded->record, probe->coordinateRecord());
    }
}

TEST_F(ZEBLocationTest, ProductsTruncateTowardZeroAndSaturateAtThirtyTwoBits) {
    const struct {
        float latitude, longitude, accuracy;
        const char* tail;
    } cases[] = {
        {-90.0f, 180.0f, 1e30f, "latitude_e7: -900000000 longitude_e7: 1800000000> radius: 2147483647"},
        {1.5f, 2.5f, -1e30f, "radius: -2147483648"},
        {1.5f, 2.5f, std::numeric_limits<float>::quiet_NaN(), "radius: 0"},
    };
    for (const auto& c : cases) {
        std::string record =
            ZEBLocation::createWithLatitudeLongitudeAccuracy(c.latitude, c.longitude, c.accuracy)
                ->coordinateRecord();
        EXPECT_TRUE(record.ends_with(c.tail)) << record;
    }
}

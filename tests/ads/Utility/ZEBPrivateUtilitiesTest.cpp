#include "ads/Utility/ZEBPrivateUtilities.h"

#include "tests/support/SimTest.h"

namespace {
class Companion : public kit::Object {
public:
    explicit Companion(bool* destroyed) : destroyed_(destroyed) {}
    ~Companion() override { *destroyed_ = true; }

private:
    bool* destroyed_;
};

class OtherCompanion : public kit::Object {};
}  // namespace

// The table belongs to the platform: a fresh one per test. The ad client's web view makes and
// drops its companion through it (see its own test).
using ZEBPrivateUtilitiesTest = SimTest;

TEST_F(ZEBPrivateUtilitiesTest, TheTableRetainsItsValuesAndSettingReplacesAndReleases) {
    auto key = std::make_shared<OtherCompanion>();
    bool firstGone = false, secondGone = false;
    ZEBPrivateUtilities::setPrivateObjectForKey(std::make_shared<Companion>(&firstGone), key.get());
    EXPECT_FALSE(firstGone);
    ASSERT_TRUE(ZEBPrivateUtilities::privateObjectForKeyAs<Companion>(key.get()));
    EXPECT_EQ(ZEBPrivateUtilities::privateObjectForKeyAs<OtherCompanion>(key.get()), nullptr);

    ZEBPrivateUtilities::setPrivateObjectForKey(std::make_shared<Companion>(&secondGone), key.get());
    EXPECT_TRUE(firstGone);
    ZEBPrivateUtilities::setPrivateObjectForKey(nullptr, key.get());
    EXPECT_TRUE(secondGone);
    EXPECT_EQ(ZEBPrivateUtilities::privateObjectForKey(key.get()), nullptr);
    ZEBPrivateUtilities::removePrivateObjectForKey(key.get());
    EXPECT_EQ(ZEBPrivateUtilities::count(), 0u);
}

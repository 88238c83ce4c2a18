#include "ads/Utility/ZEBPrivateUtilities.h"

#include "tests/support/SimTest.h"

namespace {
class Companion : public kit::Object {
public:
    explicit Companion(bool* destroyed = nullptr) : destroyed_(destroyed) {}
    ~Companion() override {
        if (destroyed_) *destroyed_ = true;
    }

private:
    bool* destroyed_;
};

class OtherCompanion : public kit::Object {};

// A public object that keeps its working state in a companion, as the ad client's views do.
class PublicFace : public kit::Object {
public:
    explicit PublicFace(bool* destroyed) {
        ZEBPrivateUtilities::setPrivateObjectForKey(std::make_shared<Companion>(destroyed), this);
    }
    ~PublicFace() override { ZEBPrivateUtilities::removePrivateObjectForKey(this); }
};
}  // namespace

// The table belongs to the platform: a fresh one per test.
using ZEBPrivateUtilitiesTest = SimTest;

TEST_F(ZEBPrivateUtilitiesTest, CompanionLivesExactlyAsLongAsItsPublicObject) {
    bool destroyed = false;
    auto face = std::make_shared<PublicFace>(&destroyed);
    auto companion = ZEBPrivateUtilities::privateObjectForKeyAs<Companion>(face.get());
    ASSERT_TRUE(companion);
    EXPECT_EQ(ZEBPrivateUtilities::privateObjectForKeyAs<OtherCompanion>(face.get()), nullptr);
    companion.reset();
    EXPECT_FALSE(destroyed) << "the table retains the companion";
    face.reset();
    EXPECT_TRUE(destroyed);
    EXPECT_EQ(ZEBPrivateUtilities::count(), 0u);
}

TEST_F(ZEBPrivateUtilitiesTest, SettingReplacesAndNullRemoves) {
    auto key = std::make_shared<OtherCompanion>();
    bool firstGone = false;
    ZEBPrivateUtilities::setPrivateObjectForKey(std::make_shared<Companion>(&firstGone), key.get());
    auto second = std::make_shared<Companion>();
    ZEBPrivateUtilities::setPrivateObjectForKey(second, key.get());
    EXPECT_TRUE(firstGone);
    EXPECT_EQ(ZEBPrivateUtilities::privateObjectForKey(key.get()), second);
    ZEBPrivateUtilities::setPrivateObjectForKey(nullptr, key.get());
    EXPECT_EQ(ZEBPrivateUtilities::privateObjectForKey(key.get()), nullptr);
    ZEBPrivateUtilities::removePrivateObjectForKey(key.get());
    EXPECT_EQ(ZEBPrivateUtilities::count(), 0u);
}

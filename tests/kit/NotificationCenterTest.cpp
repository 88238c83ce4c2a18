#include "kit/NotificationCenter.h"
#include "tests/support/SimTest.h"

#include <memory>
#include <string>
#include <vector>

using kit::Notification;
using kit::NotificationCenter;
using Log = std::vector<std::string>;

namespace {
class Thing : public kit::Object {};
}  // namespace

class NotificationCenterTest : public SimTest {
protected:
    NotificationCenter center;
    Log heard;
    NotificationCenter::Handler note(std::string line) {
        return [this, line](const Notification&) { heard.push_back(line); };
    }
};

TEST_F(NotificationCenterTest, DeliversByNameInOrderAndFiltersByObject) {
    Thing one, two;
    auto a = center.addObserver("changed", &one, [&](const Notification& n) {
        heard.push_back("a:" + *n.userInfo.find("what")->string());
    });
    auto b = center.addObserver("changed", nullptr, [&](const Notification& n) {
        heard.push_back(std::string("b:") + (n.object == &two ? "two" : "one"));
    });
    auto every =
        center.addObserver("", nullptr, [&](const Notification& n) { heard.push_back("*" + n.name); });
    center.post("changed", &two, {{"what", "x"}});
    center.post("changed", &one, {{"what", "y"}});
    center.post("other", &one);
    EXPECT_EQ(heard, (Log{"b:two", "*changed", "a:y", "b:one", "*changed", "*other"}));
}

TEST_F(NotificationCenterTest, ARegistrationEndsWithItsSubscription) {
    auto kept = center.addObserver("x", nullptr, note("kept"));
    {
        auto scoped = center.addObserver("x", nullptr, note("scoped"));
        center.post("x");
    }
    auto cancelled = center.addObserver("x", nullptr, note("cancelled"));
    cancelled.cancel();
    EXPECT_FALSE(cancelled.isActive());
    NotificationCenter::Subscription moved = std::move(kept);
    center.post("x");
    EXPECT_EQ(heard, (Log{"kept", "scoped", "kept"}));
    EXPECT_EQ(center.observerCount(), 1u);
    EXPECT_TRUE(moved.isActive());
}

TEST_F(NotificationCenterTest, RegistrationsEndedDuringDeliveryAreSkippedAndNewOnesWaitForTheNext) {
    NotificationCenter::Subscription a, b, later;
    a = center.addObserver("n", nullptr, [&](const Notification&) {
        heard.push_back("a");
        b.cancel();
        a.cancel();  // ending itself while it runs
        later = center.addObserver("n", nullptr, note("later"));
    });
    b = center.addObserver("n", nullptr, note("b"));
    center.post("n");
    EXPECT_EQ(heard, Log{"a"});
    center.post("n");
    EXPECT_EQ(heard, (Log{"a", "later"}));
}

TEST_F(NotificationCenterTest, PostingInsideADeliveryNests) {
    auto outer = center.addObserver("outer", nullptr, [&](const Notification&) {
        heard.push_back("outer");
        center.post("inner");
    });
    auto inner = center.addObserver("inner", nullptr, note("inner"));
    center.post("outer");
    EXPECT_EQ(heard, (Log{"outer", "inner"}));
}

TEST_F(NotificationCenterTest, ASubscriptionMayOutliveItsCenter) {
    auto own = std::make_unique<NotificationCenter>();
    auto subscription = own->addObserver("n", nullptr, note("own"));
    own.reset();
    EXPECT_FALSE(subscription.isActive());
    subscription.cancel();
    EXPECT_EQ(&NotificationCenter::defaultCenter(), &sim().notificationCenter());
}

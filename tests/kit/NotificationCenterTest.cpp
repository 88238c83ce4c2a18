#include "kit/NotificationCenter.h"
#include "tests/support/SimTest.h"

#include <string>
#include <vector>

using kit::Notification;
using kit::NotificationCenter;

namespace {
class Thing : public kit::Object {};
}  // namespace

class NotificationCenterTest : public SimTest {
protected:
    NotificationCenter center;
    std::vector<std::string> heard;
    int a = 0, b = 0;  // observer identities
};

TEST_F(NotificationCenterTest, DeliversByNameAndFiltersByObject) {
    Thing one, two;
    center.addObserver(&a, "changed", &one, [&](const Notification& n) {
        heard.push_back("a:" + *n.userInfo.find("what")->string());
    });
    center.addObserver(&b, "changed", nullptr, [&](const Notification& n) {
        heard.push_back(std::string("b:") + (n.object == &two ? "two" : "one"));
    });
    center.post("changed", &two, {{"what", "x"}});
    center.post("changed", &one, {{"what", "y"}});
    center.post("other", &one);
    EXPECT_EQ(heard, (std::vector<std::string>{"b:two", "a:y", "b:one"}));
}

TEST_F(NotificationCenterTest, AnEmptyNameObservesEveryName) {
    center.addObserver(&a, "", nullptr, [&](const Notification& n) { heard.push_back(n.name); });
    center.post("one");
    center.post("two");
    EXPECT_EQ(heard, (std::vector<std::string>{"one", "two"}));
}

TEST_F(NotificationCenterTest, RemovalTakesAnObserverOutOfEverything) {
    Thing one;
    center.addObserver(&a, "x", nullptr, [&](const Notification&) { heard.push_back("a:x"); });
    center.addObserver(&a, "y", &one, [&](const Notification&) { heard.push_back("a:y"); });
    center.addObserver(&b, "x", nullptr, [&](const Notification&) { heard.push_back("b:x"); });
    center.removeObserver(&a);
    center.post("x");
    center.post("y", &one);
    EXPECT_EQ(heard, (std::vector<std::string>{"b:x"}));
    EXPECT_EQ(center.observerCount(), 1u);
}

TEST_F(NotificationCenterTest, RemovalByNameAndObjectLeavesTheRest) {
    Thing one, two;
    center.addObserver(&a, "x", &one, [&](const Notification&) { heard.push_back("x one"); });
    center.addObserver(&a, "x", &two, [&](const Notification&) { heard.push_back("x two"); });
    center.addObserver(&a, "y", nullptr, [&](const Notification&) { heard.push_back("y"); });
    center.removeObserver(&a, "x", &one);
    center.post("x", &one);
    center.post("x", &two);
    center.post("y");
    EXPECT_EQ(heard, (std::vector<std::string>{"x two", "y"}));
}

TEST_F(NotificationCenterTest, ObserversRemovedDuringDeliveryAreNotCalledAndAddedOnesWaitForTheNext) {
    center.addObserver(&a, "n", nullptr, [&](const Notification&) {
        heard.push_back("a");
        center.removeObserver(&b);
        center.removeObserver(&a);  // removing itself while running
        center.addObserver(&a, "n", nullptr, [&](const Notification&) { heard.push_back("a again"); });
    });
    center.addObserver(&b, "n", nullptr, [&](const Notification&) { heard.push_back("b"); });
    center.post("n");
    EXPECT_EQ(heard, (std::vector<std::string>{"a"}));
    center.post("n");
    EXPECT_EQ(heard, (std::vector<std::string>{"a", "a again"}));
}

TEST_F(NotificationCenterTest, PostingInsideDeliveryNests) {
    center.addObserver(&a, "outer", nullptr, [&](const Notification&) {
        heard.push_back("outer");
        center.post("inner");
    });
    center.addObserver(&b, "inner", nullptr, [&](const Notification&) { heard.push_back("inner"); });
    center.post("outer");
    EXPECT_EQ(heard, (std::vector<std::string>{"outer", "inner"}));
}

class OwnCenter : public NotificationCenter {};

TEST_F(NotificationCenterTest, CentersAreIndependentAndTheDefaultOneBelongsToThePlatform) {
    OwnCenter own;
    NotificationCenter::defaultCenter().addObserver(&a, "n", nullptr,
                                                    [&](const Notification&) { heard.push_back("default"); });
    own.addObserver(&a, "n", nullptr, [&](const Notification&) { heard.push_back("own"); });
    own.post("n");
    EXPECT_EQ(heard, (std::vector<std::string>{"own"}));
    EXPECT_EQ(&NotificationCenter::defaultCenter(), &sim().notificationCenter());
}

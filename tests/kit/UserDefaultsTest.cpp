#include "kit/FileManager.h"
#include "kit/Log.h"
#include "kit/UserDefaults.h"
#include "tests/support/SimTest.h"

using kit::UserDefaults;
using kit::Value;

class UserDefaultsTest : public SimTest {
protected:
    std::filesystem::path file() { return sim().folder() / "Config" / "settings.bin"; }
};

TEST_F(UserDefaultsTest, TypedGettersAnswerNoneForOtherTypes) {
    UserDefaults& d = UserDefaults::standard();
    d.set("s", "text");
    d.set("n", 2.5f);
    d.set("b", true);
    EXPECT_EQ(d.string("s"), "text");
    EXPECT_EQ(d.number("n"), 2.5);
    EXPECT_EQ(d.integer("n"), 2);
    EXPECT_EQ(d.boolean("b"), true);
    EXPECT_FALSE(d.number("s"));
    EXPECT_FALSE(d.string("n"));
    EXPECT_FALSE(d.boolean("missing"));
    EXPECT_EQ(d.map("s"), nullptr);
    d.remove("s");
    EXPECT_EQ(d.find("s"), nullptr);
}

TEST_F(UserDefaultsTest, NestedValuesRoundTripThroughARealFile) {
    Value everything(Value::Map{
        {"int", -42},
        {"big", *kit::Decimal::parse("10000000000000000999")},
        {"real", 0.1},
        {"flag", false},
        {"null", Value()},
        {"date", Value::Date{1321361126.25}},
        {"data", Value::Data{0, 1, 255}},
        {"list", Value::Array{1, "two", Value::Array{}, Value::Map{}}},
        {"timing", Value::Map{{"category", "prl"}, {"userData", Value::Map{{"pai", "abc"}}}}},
        {"text", "ünïcode \0 inside"},
    });
    {
        UserDefaults d(file());
        d.set("vantor_timing_shared", everything);
        ASSERT_TRUE(d.synchronize());
    }
    UserDefaults reread(file());
    ASSERT_NE(reread.find("vantor_timing_shared"), nullptr);
    EXPECT_EQ(*reread.find("vantor_timing_shared"), everything);
    EXPECT_EQ(reread.map("vantor_timing_shared")->find("date")->date()->secondsSince1970, 1321361126.25);
}

TEST_F(UserDefaultsTest, AMissingFileIsEmptyQuietlyAndACorruptOneWithOneLogLine) {
    {
        kit::Log::Capture log;
        UserDefaults d(file());
        EXPECT_TRUE(d.dictionaryRepresentation().empty());
        EXPECT_TRUE(log.lines().empty());
        d.set("k", Value::Array{1, 2, 3});
        ASSERT_TRUE(d.synchronize());
    }
    auto& files = kit::FileManager::defaultManager();
    const std::string bytes = *files.read(file());
    std::string flipped = bytes;
    flipped[flipped.size() / 2] ^= 0x40;
    for (const std::string& corrupt : {bytes.substr(0, bytes.size() - 1), bytes.substr(0, 3), flipped}) {
        ASSERT_TRUE(files.writeAtomically(file(), corrupt));
        kit::Log::Capture log;
        EXPECT_TRUE(UserDefaults(file()).dictionaryRepresentation().empty()) << corrupt.size();
        EXPECT_EQ(log.lines().size(), 1u);
    }
}

TEST_F(UserDefaultsTest, AFailedWriteReportsFalseWithOneLogLine) {
    // The settings folder's place is taken by a file, so nothing can be written there.
    ASSERT_TRUE(
        kit::FileManager::defaultManager().writeAtomically(sim().folder() / "Config", "not a folder"));
    UserDefaults d(file());
    d.set("k", 1);
    kit::Log::Capture log;
    EXPECT_FALSE(d.synchronize());
    EXPECT_EQ(log.lines().size(), 1u);
}

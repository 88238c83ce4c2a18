#include "adserver/SlotTable.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace {

TEST(SlotTableTest, AFileAddsSlotsAndReplacesThoseOfTheSameName) {
    auto file = std::filesystem::temp_directory_path() / "slot-table-test.json";
    std::ofstream(file) << R"({"slots": {"a1b2c3d4e5f6a7b": {"answer": "off"},
        "extra": {"size": "768x90", "creatives": ["bridge"], "refresh": 12.5, "type": "zqp", "fault": "503"}},
        "script": {"fault": "empty"}})";
    std::string error;
    auto table = SlotTable::withFile(file.string(), &error);
    std::filesystem::remove(file);
    ASSERT_TRUE(table) << error;
    EXPECT_EQ(table->slots().size(), SlotTable::builtIn().slots().size() + 1);
    EXPECT_EQ(table->find("a1b2c3d4e5f6a7b")->answer, Slot::Answer::Off);
    const Slot* extra = table->find("extra");
    ASSERT_TRUE(extra);
    EXPECT_EQ(extra->width, 768);
    EXPECT_EQ(extra->creatives, std::vector<std::string>{"bridge"});
    EXPECT_EQ(extra->refreshSeconds, 12.5);
    EXPECT_EQ(extra->typeWord(), "zqp");
    EXPECT_EQ(extra->fault, Fault::Kind::Unavailable);
    EXPECT_EQ(table->scriptFault(), Fault::Kind::Empty);
}

TEST(SlotTableTest, ABadFileIsRefusedWithWhatIsWrong) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"{", "not a JSON object"},
        {"[]", "not a JSON object"},
        {R"({"slot": {}})", "unknown key \"slot\""},
        {R"({"slots": []})", "\"slots\" must be an object"},
        {R"({"slots": {"s": 3}})", "slot \"s\" must be an object"},
        {R"({"slots": {"": {}}})", "empty identifier"},
        {R"({"slots": {"s": {"answer": "yes"}}})", "slot \"s\": \"answer\" must be one of"},
        {R"({"slots": {"s": {"size": "300x250"}}})", "\"size\" must be \"320x50\" or \"768x90\""},
        {R"({"slots": {"s": {"creatives": ["text", "video"]}}})",
         "\"creatives\" must be a list of creative names"},
        {R"({"slots": {"s": {"creatives": "text"}}})", "\"creatives\" must be a list"},
        {R"({"slots": {"s": {"refresh": -1}}})", "\"refresh\" must be a number of seconds"},
        {R"({"slots": {"s": {"refresh": "30"}}})", "\"refresh\" must be a number of seconds"},
        {R"({"slots": {"s": {"clickTracking": 1}}})", "\"clickTracking\" must be true or false"},
        {R"({"slots": {"s": {"fault": "slow"}}})", "\"fault\" must be the name of a fault"},
        {R"({"slots": {"s": {"mediation": []}}})", "\"mediation\" must be an object"},
        {R"({"slots": {"s": {"colour": "red"}}})", "slot \"s\": unknown key \"colour\""},
        {R"({"script": {"fault": "404", "also": 1}})", "\"script\" must be"},
    };
    for (const auto& [json, expected] : cases) {
        std::string error;
        EXPECT_FALSE(SlotTable::withJson(json, &error)) << json;
        EXPECT_NE(error.find(expected), std::string::npos) << json << " gave: " << error;
    }
    std::string error;
    EXPECT_FALSE(SlotTable::withFile("/nonexistent/slots.json", &error));
    EXPECT_EQ(error, "cannot read the configuration file /nonexistent/slots.json");
}

}  // namespace

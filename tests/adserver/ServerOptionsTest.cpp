#include "adserver/ServerOptions.h"

#include <gtest/gtest.h>

namespace {

TEST(ServerOptionsTest, ReadsEachOptionInBothSpellings) {
    std::string error;
    auto options = ServerOptions::parse({"--port", "0", "--db=/tmp/e.db", "--config", "slots.json"}, &error);
    ASSERT_TRUE(options) << error;
    EXPECT_EQ(options->port, 0);
    EXPECT_EQ(options->db, "/tmp/e.db");
    EXPECT_EQ(options->config, "slots.json");
    EXPECT_EQ(ServerOptions::parse({}, &error)->port, 8480) << "the ad client's default";
    EXPECT_TRUE(ServerOptions::parse({"-h"}, &error)->help);
}

TEST(ServerOptionsTest, RefusesBadOptionsWithOneLine) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
        {{"--verbose"}, "unknown option --verbose"},
        {{"8480"}, "unknown option 8480"},
        {{"--port"}, "--port needs a value"},
        {{"--port", "65536"}, "--port needs a number from 0 to 65535, not \"65536\""},
        {{"--port=-1"}, "--port needs a number from 0 to 65535, not \"-1\""},
        {{"--port", "80x"}, "--port needs a number from 0 to 65535, not \"80x\""},
        {{"--db="}, "--db needs a file name"},
        {{"--config", ""}, "--config needs a file name"},
        {{"--help=yes"}, "--help takes no value"},
    };
    for (const auto& [args, expected] : cases) {
        std::string error;
        EXPECT_FALSE(ServerOptions::parse(args, &error)) << expected;
        EXPECT_EQ(error, expected);
    }
}

}  // namespace

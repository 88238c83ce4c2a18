#include "kit/HttpDateFormatter.h"

#include <gtest/gtest.h>

using kit::HttpDateFormatter;

namespace {
const HttpDateFormatter& formatter() {
    return HttpDateFormatter::shared();
}
constexpr double kTuesday = 1321361126;  // Tue, 15 Nov 2011 12:45:26 UTC
}  // namespace

TEST(HttpDateFormatterTest, WritesAndReadsBackTheHeaderFormWithoutAZone) {
    const std::pair<double, const char*> cases[] = {
        {kTuesday, "Tue, 15 Nov 2011 12:45:26"},
        {-1, "Wed, 31 Dec 1969 23:59:59"},
        {951868799, "Tue, 29 Feb 2000 23:59:59"},
        {4102444799, "Thu, 31 Dec 2099 23:59:59"},
    };
    for (const auto& [seconds, text] : cases) {
        EXPECT_EQ(formatter().stringFromDate(seconds), text);
        EXPECT_EQ(formatter().dateFromString(text), seconds) << text;
    }
    EXPECT_EQ(formatter().stringFromDate(kTuesday + 0.9), "Tue, 15 Nov 2011 12:45:26");
}

TEST(HttpDateFormatterTest, StrictParsingNeedsTheZoneCutOffAndLenientReadsAWholeHeader) {
    EXPECT_EQ(formatter().dateFromString("Tue, 15 Nov 2011 12:45:26 "), kTuesday) << "as left by the cut";
    EXPECT_EQ(formatter().dateFromString("tue, 15 nov 2011 12:45:26"), kTuesday);
    for (const char* bad :
         {"Tue, 15 Nov 2011 12:45:26 GMT", "Tuesday, 15-Nov-11 12:45:26", "Tue, 31 Feb 2011 12:45:26",
          "Tue, 15 Nov 2011 24:00:00", "Tue, 15 Nov 2011 12:45", ""})
        EXPECT_FALSE(formatter().dateFromString(bad)) << bad;

    EXPECT_EQ(formatter().dateFromStringLeniently("Tue, 15 Nov 2011 12:45:26 GMT"), kTuesday);
    EXPECT_EQ(formatter().dateFromStringLeniently(" Tue, 15 Nov 2011 12:45:26 +0000"), kTuesday);
    EXPECT_FALSE(formatter().dateFromStringLeniently("15 Nov 2011 12:45:26 GMT"));
    EXPECT_FALSE(formatter().dateFromStringLeniently("yesterday"));
}

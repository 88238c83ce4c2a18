#include "kit/HttpDateFormatter.h"

#include <gtest/gtest.h>

using kit::HttpDateFormatter;

namespace {
const HttpDateFormatter& formatter() {
    return HttpDateFormatter::shared();
}
constexpr double kTuesday = 1321361126;  // Tue, 15 Nov 2011 12:45:26 UTC
}  // namespace

TEST(HttpDateFormatterTest, WritesTheHeaderFormWithoutAZone) {
    EXPECT_EQ(formatter().stringFromDate(kTuesday), "Tue, 15 Nov 2011 12:45:26");
    EXPECT_EQ(formatter().stringFromDate(kTuesday + 0.9), "Tue, 15 Nov 2011 12:45:26");
    EXPECT_EQ(formatter().stringFromDate(0), "Thu, 01 Jan 1970 00:00:00");
    EXPECT_EQ(formatter().stringFromDate(-1), "Wed, 31 Dec 1969 23:59:59");
    EXPECT_EQ(formatter().stringFromDate(951782400), "Tue, 29 Feb 2000 00:00:00");
}

TEST(HttpDateFormatterTest, StrictParsingNeedsTheZoneCutOff) {
    EXPECT_EQ(formatter().dateFromString("Tue, 15 Nov 2011 12:45:26"), kTuesday);
    EXPECT_EQ(formatter().dateFromString("Tue, 15 Nov 2011 12:45:26 "), kTuesday)
        << "as left by cutting before GMT";
    EXPECT_EQ(formatter().dateFromString("tue, 15 nov 2011 12:45:26"), kTuesday);
    EXPECT_FALSE(formatter().dateFromString("Tue, 15 Nov 2011 12:45:26 GMT"));
    EXPECT_FALSE(formatter().dateFromString("Tuesday, 15-Nov-11 12:45:26"));
    EXPECT_FALSE(formatter().dateFromString("Tue, 31 Feb 2011 12:45:26"));
    EXPECT_FALSE(formatter().dateFromString("Tue, 15 Nov 2011 24:00:00"));
    EXPECT_FALSE(formatter().dateFromString("Tue, 15 Nov 2011 12:45"));
    EXPECT_FALSE(formatter().dateFromString(""));
}

TEST(HttpDateFormatterTest, LenientParsingReadsAWholeDateHeader) {
    EXPECT_EQ(formatter().dateFromStringLeniently("Tue, 15 Nov 2011 12:45:26 GMT"), kTuesday);
    EXPECT_EQ(formatter().dateFromStringLeniently(" Tue, 15 Nov 2011 12:45:26 +0000"), kTuesday);
    EXPECT_FALSE(formatter().dateFromStringLeniently("15 Nov 2011 12:45:26 GMT"));
    EXPECT_FALSE(formatter().dateFromStringLeniently("yesterday"));
}

TEST(HttpDateFormatterTest, ReadsBackWhatItWrites) {
    for (double t : {0.0, 86399.0, 951868799.0, 1704067200.0, 4102444799.0})
        EXPECT_EQ(formatter().dateFromString(formatter().stringFromDate(t)), t)
            << formatter().stringFromDate(t);
}

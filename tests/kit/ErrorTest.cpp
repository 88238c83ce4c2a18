#include "kit/Error.h"

#include <gtest/gtest.h>

using kit::Error;

TEST(Error, DescribesItselfFromItsUserInfoOrElseByDomainAndCode) {
    auto underlying = Error::make("net", 61, {{Error::kLocalizedDescriptionKey, "Connection refused"}});
    auto error = Error::make("app", 2,
                             {{Error::kLocalizedDescriptionKey, "Download failed."},
                              {Error::kLocalizedFailureReasonKey, "The server went away."}},
                             underlying);
    EXPECT_EQ(error->localizedDescription(), "Download failed.");
    EXPECT_EQ(error->localizedFailureReason(), "The server went away.");
    EXPECT_NE(error->description().find("Download failed."), std::string::npos);

    auto bare = Error::make("some.domain", -7);
    EXPECT_EQ(bare->localizedDescription(), "The operation couldn't be completed. (some.domain error -7.)");
    EXPECT_FALSE(bare->localizedFailureReason());
}

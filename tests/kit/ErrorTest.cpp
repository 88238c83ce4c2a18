#include "kit/Error.h"

#include <gtest/gtest.h>

using kit::Error;

TEST(Error, CarriesDomainCodeAndUserInfo) {
    auto underlying = Error::make("net", 61, {{Error::kLocalizedDescriptionKey, "Connection refused"}});
    auto error = Error::make("app", 2,
                             {{Error::kLocalizedDescriptionKey, "Download failed."},
                              {Error::kLocalizedFailureReasonKey, "The server went away."},
                              {"HttpStatus", 503}},
                             underlying);
    EXPECT_EQ(error->domain(), "app");
    EXPECT_EQ(error->code(), 2);
    EXPECT_EQ(error->localizedDescription(), "Download failed.");
    EXPECT_EQ(error->localizedFailureReason(), "The server went away.");
    EXPECT_EQ(*error->userInfo().find("HttpStatus"), kit::Value(503));
    EXPECT_EQ(error->underlyingError()->localizedDescription(), "Connection refused");
    EXPECT_NE(error->description().find("Download failed."), std::string::npos);
    EXPECT_EQ(error->className(), "Error");
}

TEST(Error, WithoutADescriptionNamesDomainAndCode) {
    auto error = Error::make("some.domain", -7);
    EXPECT_EQ(error->localizedDescription(), "The operation couldn't be completed. (some.domain error -7.)");
    EXPECT_FALSE(error->localizedFailureReason());
}

class HttpError : public Error {
public:
    HttpError() : Error("http", 404) {}
};

TEST(Error, KindsAreToldApartByType) {
    std::shared_ptr<Error> error = std::make_shared<HttpError>();
    EXPECT_NE(std::dynamic_pointer_cast<HttpError>(error), nullptr);
    EXPECT_EQ(error->className(), "HttpError");
}

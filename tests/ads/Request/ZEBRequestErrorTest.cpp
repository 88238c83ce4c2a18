#include "ads/Request/ZEBRequestError.h"

#include "ads/Request/ZEBRequestPrivate.h"
#include "tests/support/AdContextTest.h"

using kit::Value;

class ZEBRequestErrorTest : public AdContextTest {};

TEST_F(ZEBRequestErrorTest, EveryCodeHasItsExactText) {
    const std::pair<int, const char*> texts[] = {
        {0, "Invalid ad request parameter(s).  Check the Xcode console for details."},
        {1, "No ad to show."},
        {2, "A network error occurred."},
        {3, "Server error processing the request."},
        {5, "The Vantor Ad request was unable to be fulfilled before a timeout occurred."},
        {6, "Will not send request because interstitial object has been used."},
        {7, "The Ad Mediation request could not be fulfilled"},
        {9, "Invalid ad request parameter(s).  Check the Xcode console for details."},
        {-1, "Invalid ad request parameter(s).  Check the Xcode console for details."},
    };
    for (const auto& [code, text] : texts)
        EXPECT_EQ(ZEBRequestError::localizedStringForErrorCode(code), std::string("Request Error: ") + text)
            << code;
    sim().device().setSystemVersion(kPort, "4.2");
    EXPECT_EQ(ZEBRequestError::localizedStringForErrorCode(4),
              "Request Error: This device's OS is 4.2.0.  It is below the minimum of 3.0.");
}

TEST_F(ZEBRequestErrorTest, DetailsCarryMessageAndHttpStatus) {
    auto error = ZEBRequestError::errorWithCode(ZEBErrorCodeServer, nullptr, 404);
    EXPECT_EQ(error->domain(), kZEBErrorDomain);
    EXPECT_EQ(error->code(), 3);
    EXPECT_EQ(error->localizedDescription(), "Request Error: Server error processing the request.");
    EXPECT_EQ(error->localizedFailureReason(), error->localizedDescription());
    EXPECT_EQ(*error->userInfo().find("HttpStatus"), Value("HTTP status 404:  not found"));
    EXPECT_EQ(error->userInfo().size(), 3u);
    EXPECT_FALSE(ZEBRequestError::errorWithCode(1, nullptr, 0)->userInfo().contains("HttpStatus"));
}

TEST_F(ZEBRequestErrorTest, OnlyAnInvalidRequestMergesTheParameters) {
    auto request = std::static_pointer_cast<ZEBRequestPrivate>(ZEBRequest::request());
    request->addKeyword("shoes");
    auto invalid = ZEBRequestError::errorWithCode(ZEBErrorCodeInvalidRequest, request.get());
    EXPECT_EQ(*invalid->userInfo().find("kw"), Value(Value::Array{"shoes"}));
    EXPECT_EQ(*invalid->userInfo().find("js"), Value("quor-sdk-i-v5.0.5"));
    EXPECT_TRUE(invalid->userInfo().contains(kit::Error::kLocalizedDescriptionKey));
    auto noAd = ZEBRequestError::errorWithCode(ZEBErrorCodeNoAd, request.get());
    EXPECT_EQ(noAd->userInfo().size(), 2u);
}

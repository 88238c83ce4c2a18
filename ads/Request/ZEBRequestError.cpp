#include "ads/Request/ZEBRequestError.h"

#include "ads/Request/ZEBRequestPrivate.h"
#include "ads/Utility/ZEBIdentifierUtilities.h"
#include "kit/UrlResponse.h"

#include <fmt/format.h>

namespace {
kit::Value::Map details(int code, const ZEBRequestPrivate* request, int httpStatusCode) {
    std::string message = ZEBRequestError::localizedStringForErrorCode(code);
    kit::Value::Map map{{kit::Error::kLocalizedDescriptionKey, message},
                        {kit::Error::kLocalizedFailureReasonKey, message}};
    if (httpStatusCode >= 1) {
        map.set(kZEBErrorHttpStatus,
                fmt::format("HTTP status {}:  {}", httpStatusCode,
                            kit::UrlResponse::localizedStringForStatusCode(httpStatusCode)));
    }
    if (code == ZEBErrorCodeInvalidRequest && request) {
        for (auto& [key, value] : request->parameters()) map.set(key, std::move(value));
    }
    return map;
}
}  // namespace

ZEBRequestError::ZEBRequestError(int code, const ZEBRequestPrivate* request, int httpStatusCode)
    : kit::Error(kZEBErrorDomain, code, details(code, request, httpStatusCode)) {}

std::shared_ptr<ZEBRequestError> ZEBRequestError::errorWithCode(int code, const ZEBRequestPrivate* request,
                                                                int httpStatusCode) {
    return std::make_shared<ZEBRequestError>(code, request, httpStatusCode);
}

std::string ZEBRequestError::localizedStringForErrorCode(int code) {
    std::string text;
    switch (code) {
        case ZEBErrorCodeNoAd:
            text = "No ad to show.";
            break;
        case ZEBErrorCodeNetwork:
            text = "A network error occurred.";
            break;
        case ZEBErrorCodeServer:
            text = "Server error processing the request.";
            break;
        case ZEBErrorCodeOSVersion: {
            auto v = ZEBIdentifierUtilities::getOSMajorMinorBugFix();
            text = fmt::format("This device's OS is {}.{}.{}.  It is below the minimum of {}.{}.", v.major,
                               v.minor, v.bugFix, 3, 0);
            break;
        }
        case ZEBErrorCodeTimeout:
            text = "The Vantor Ad request was unable to be fulfilled before a timeout occurred.";
            break;
        case ZEBErrorCodeInterstitialUsed:
            text = "Will not send request because interstitial object has been used.";
            break;
        case ZEBErrorCodeMediation:
            text = "The Ad Mediation request could not be fulfilled";
            break;
        default:
            text = "Invalid ad request parameter(s).  Check the Xcode console for details.";
            break;
    }
    return "Request Error: " + text;
}

#include "ads/Request/ZEBRequestError.h"

#include "ads/Request/ZEBRequestPrivate.h"
#include "ads/Utility/ZEBIdentifierUtilities.h"

#include <fmt/format.h>

namespace {
kit::Value::Map details(int code, const ZEBRequestPrivate* request, int httpStatusCode) {
    std::string message = ZEBRequestError::localizedStringForErrorCode(code);
    kit::Value::Map map{{kit::Error::kLocalizedDescriptionKey, message},
                        {kit::Error::kLocalizedFailureReasonKey, message}};
    if (httpStatusCode >= 1) {
        map.set(kZEBErrorHttpStatus, fmt::format("HTTP status {}:  {}", httpStatusCode,
                                                 ZEBRequestError::reasonPhraseForStatusCode(httpStatusCode)));
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

std::string ZEBRequestError::reasonPhraseForStatusCode(int status) {
    switch (status) {
        case 100:
            return "Continue";
        case 101:
            return "Switching Protocols";
        case 200:
            return "OK";
        case 201:
            return "Created";
        case 202:
            return "Accepted";
        case 203:
            return "Non-Authoritative Information";
        case 204:
            return "No Content";
        case 205:
            return "Reset Content";
        case 206:
            return "Partial Content";
        case 300:
            return "Multiple Choices";
        case 301:
            return "Moved Permanently";
        case 302:
            return "Found";
        case 303:
            return "See Other";
        case 304:
            return "Not Modified";
        case 305:
            return "Use Proxy";
        case 307:
            return "Temporary Redirect";
        case 308:
            return "Permanent Redirect";
        case 400:
            return "Bad Request";
        case 401:
            return "Unauthorized";
        case 402:
            return "Payment Required";
        case 403:
            return "Forbidden";
        case 404:
            return "Not Found";
        case 405:
            return "Method Not Allowed";
        case 406:
            return "Not Acceptable";
        case 407:
            return "Proxy Authentication Required";
        case 408:
            return "Request Timeout";
        case 409:
            return "Conflict";
        case 410:
            return "Gone";
        case 411:
            return "Length Required";
        case 412:
            return "Precondition Failed";
        case 413:
            return "Content Too Large";
        case 414:
            return "URI Too Long";
        case 415:
            return "Unsupported Media Type";
        case 416:
            return "Range Not Satisfiable";
        case 417:
            return "Expectation Failed";
        case 421:
            return "Misdirected Request";
        case 422:
            return "Unprocessable Content";
        case 426:
            return "Upgrade Required";
        case 428:
            return "Precondition Required";
        case 429:
            return "Too Many Requests";
        case 431:
            return "Request Header Fields Too Large";
        case 451:
            return "Unavailable For Legal Reasons";
        case 500:
            return "Internal Server Error";
        case 501:
            return "Not Implemented";
        case 502:
            return "Bad Gateway";
        case 503:
            return "Service Unavailable";
        case 504:
            return "Gateway Timeout";
        case 505:
            return "HTTP Version Not Supported";
        case 511:
            return "Network Authentication Required";
        default:
            break;
    }
    switch (status / 100) {
        case 1:
            return "Informational";
        case 2:
            return "Success";
        case 3:
            return "Redirection";
        case 4:
            return "Client Error";
        case 5:
            return "Server Error";
        default:
            return "Unknown Status";
    }
}

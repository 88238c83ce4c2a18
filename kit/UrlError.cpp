#include "kit/UrlError.h"

namespace kit::UrlError {

namespace {
const char* standardDescription(int code) {
    switch (code) {
        case kCancelled:
            return "cancelled";
        case kBadUrl:
            return "bad URL";
        case kTimedOut:
            return "The request timed out.";
        case kUnsupportedUrl:
            return "unsupported URL";
        case kCannotFindHost:
            return "A server with the specified hostname could not be found.";
        case kCannotConnectToHost:
            return "Could not connect to the server.";
        case kNetworkConnectionLost:
            return "The network connection was lost.";
        case kTooManyRedirects:
            return "too many HTTP redirects";
        case kBadServerResponse:
            return "The server returned a bad response.";
        case kSecureConnectionFailed:
            return "A secure connection to the server could not be made.";
        default:
            return "An unknown error occurred.";
    }
}
}  // namespace

std::shared_ptr<const Error> make(int code, const std::string& failingUrl, const std::string& description) {
    return Error::make(
        kDomain, code,
        {{Error::kLocalizedDescriptionKey, description.empty() ? standardDescription(code) : description},
         {kFailingUrlKey, failingUrl}});
}

}  // namespace kit::UrlError

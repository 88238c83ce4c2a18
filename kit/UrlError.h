#pragma once

#include "kit/Error.h"

#include <memory>
#include <string>

namespace kit {

// Errors of URL loading: the domain, its codes and how to make one.
namespace UrlError {
constexpr const char* kDomain = "kit.UrlError";
// The URL that failed, as text, in the user info.
constexpr const char* kFailingUrlKey = "FailingURL";

constexpr int kUnknown = -1;
constexpr int kCancelled = -999;
constexpr int kBadUrl = -1000;
constexpr int kTimedOut = -1001;
constexpr int kUnsupportedUrl = -1002;
constexpr int kCannotFindHost = -1003;
constexpr int kCannotConnectToHost = -1004;
constexpr int kNetworkConnectionLost = -1005;
constexpr int kTooManyRedirects = -1007;
constexpr int kBadServerResponse = -1011;
constexpr int kSecureConnectionFailed = -1200;

std::shared_ptr<const Error> make(int code, const std::string& failingUrl,
                                  const std::string& description = {});
}  // namespace UrlError

}  // namespace kit

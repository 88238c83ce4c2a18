#include "kit/UrlResponse.h"

#include <algorithm>
#include <cctype>

namespace kit {

UrlResponse::UrlResponse(Url url, int statusCode, HttpHeaders headers, bool http)
    : url_(std::move(url)), status_(statusCode), headers_(std::move(headers)), http_(http) {}

UrlResponse::UrlResponse(Url url, int statusCode, HttpHeaders headers)
    : UrlResponse(std::move(url), statusCode, std::move(headers), true) {}

UrlResponse UrlResponse::nonHttp(Url url) {
    return UrlResponse(std::move(url), 0, {}, false);
}

std::string UrlResponse::mimeType() const {
    std::string type = headers_.value("Content-Type").value_or("");
    type = type.substr(0, type.find(';'));
    auto blank = [](unsigned char c) { return c == ' ' || c == '\t'; };
    while (!type.empty() && blank(type.back())) type.pop_back();
    type.erase(type.begin(), std::find_if_not(type.begin(), type.end(), blank));
    std::transform(type.begin(), type.end(), type.begin(), [](unsigned char c) { return std::tolower(c); });
    return type;
}

std::string UrlResponse::localizedStringForStatusCode(int statusCode) {
    switch (statusCode) {
        case 100:
            return "continue";
        case 101:
            return "switching protocols";
        case 200:
            return "no error";
        case 201:
            return "created";
        case 202:
            return "accepted";
        case 203:
            return "non-authoritative information";
        case 204:
            return "no content";
        case 205:
            return "reset content";
        case 206:
            return "partial content";
        case 300:
            return "multiple choices";
        case 301:
            return "moved permanently";
        case 302:
            return "found";
        case 303:
            return "see other";
        case 304:
            return "not modified";
        case 305:
            return "needs proxy";
        case 307:
            return "temporarily redirected";
        case 308:
            return "permanently redirected";
        case 400:
            return "bad request";
        case 401:
            return "unauthorized";
        case 402:
            return "payment required";
        case 403:
            return "forbidden";
        case 404:
            return "not found";
        case 405:
            return "method not allowed";
        case 406:
            return "unacceptable";
        case 407:
            return "proxy authentication required";
        case 408:
            return "request timed out";
        case 409:
            return "conflict";
        case 410:
            return "no longer exists";
        case 411:
            return "length required";
        case 412:
            return "precondition failed";
        case 413:
            return "request too large";
        case 414:
            return "requested URL too long";
        case 415:
            return "unsupported media type";
        case 416:
            return "requested range not satisfiable";
        case 417:
            return "expectation failed";
        case 429:
            return "too many requests";
        case 500:
            return "internal server error";
        case 501:
            return "unimplemented";
        case 502:
            return "bad gateway";
        case 503:
            return "service unavailable";
        case 504:
            return "gateway timed out";
        case 505:
            return "unsupported version";
        default:
            break;
    }
    if (statusCode >= 100 && statusCode < 200) return "informational";
    if (statusCode >= 200 && statusCode < 300) return "success";
    if (statusCode >= 300 && statusCode < 400) return "redirected";
    if (statusCode >= 400 && statusCode < 500) return "client error";
    if (statusCode >= 500 && statusCode < 600) return "server error";
    return "server error";
}

}  // namespace kit

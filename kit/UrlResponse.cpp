#include "kit/UrlResponse.h"

#include <algorithm>
#include <cctype>
#include <charconv>

namespace kit {

UrlResponse::UrlResponse(Url url, int statusCode, HttpHeaders headers, bool http)
    : url_(std::move(url)), status_(statusCode), headers_(std::move(headers)), http_(http) {}

UrlResponse::UrlResponse(Url url, int statusCode, HttpHeaders headers)
    : UrlResponse(std::move(url), statusCode, std::move(headers), true) {}

UrlResponse UrlResponse::nonHttp(Url url) {
    return UrlResponse(std::move(url), 0, {}, false);
}

int64_t UrlResponse::expectedContentLength() const {
    auto text = headers_.value("Content-Length");
    if (!text) return -1;
    int64_t length = -1;
    auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), length);
    if (error != std::errc() || end != text->data() + text->size() || length < 0) return -1;
    return length;
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

}  // namespace kit

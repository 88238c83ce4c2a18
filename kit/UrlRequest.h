#pragma once

#include "kit/HttpHeaders.h"
#include "kit/Url.h"

#include <string>
#include <string_view>

namespace kit {

// What a connection asks for: a URL with its method, header fields and how caches and cookies are
// used. A plain value; connections keep their own copies.
class UrlRequest {
public:
    enum class CachePolicy {
        // Whatever the protocol allows.
        Default,
        // Never answered from a local cache; the answer may still be stored.
        ReloadIgnoringLocalCacheData,
    };

    // Waiting this long without any progress ends a load with a time-out error.
    static constexpr double kDefaultTimeoutInterval = 60;

    explicit UrlRequest(Url url, CachePolicy cachePolicy = CachePolicy::Default,
                        double timeoutInterval = kDefaultTimeoutInterval);

    const Url& url() const { return url_; }
    void setUrl(Url url) { url_ = std::move(url); }
    CachePolicy cachePolicy() const { return cachePolicy_; }
    void setCachePolicy(CachePolicy policy) { cachePolicy_ = policy; }
    double timeoutInterval() const { return timeoutInterval_; }
    void setTimeoutInterval(double seconds) { timeoutInterval_ = seconds; }
    const std::string& httpMethod() const { return method_; }
    void setHttpMethod(std::string method) { method_ = std::move(method); }
    const std::string& httpBody() const { return body_; }
    void setHttpBody(std::string body) { body_ = std::move(body); }

    // Cookies the process holds for the URL are sent, and cookies in answers kept (the default).
    bool httpShouldHandleCookies() const { return handleCookies_; }
    void setHttpShouldHandleCookies(bool handle) { handleCookies_ = handle; }

    const HttpHeaders& allHttpHeaderFields() const { return headers_; }
    std::optional<std::string> valueForHttpHeaderField(std::string_view field) const {
        return headers_.value(field);
    }
    void setValueForHttpHeaderField(std::string_view value, std::string_view field) {
        headers_.set(field, value);
    }

private:
    Url url_;
    CachePolicy cachePolicy_;
    double timeoutInterval_;
    std::string method_ = "GET";
    std::string body_;
    bool handleCookies_ = true;
    HttpHeaders headers_;
};

}  // namespace kit

#pragma once

#include "kit/HttpHeaders.h"
#include "kit/Url.h"

#include <string>

namespace kit {

// The head of an answer: the URL it answers, and for HTTP its status and header fields.
class UrlResponse {
public:
    // An HTTP answer.
    UrlResponse(Url url, int statusCode, HttpHeaders headers);
    // An answer of a protocol that has no status (a status of 0 and no fields).
    static UrlResponse nonHttp(Url url);

    const Url& url() const { return url_; }
    bool isHttp() const { return http_; }
    int statusCode() const { return status_; }
    const HttpHeaders& allHeaderFields() const { return headers_; }
    // "Content-Type" up to its parameters, in lower case; empty when absent.
    std::string mimeType() const;

    // The usual English phrase for an HTTP status, e.g. "not found" for 404.
    static std::string localizedStringForStatusCode(int statusCode);

private:
    UrlResponse(Url url, int statusCode, HttpHeaders headers, bool http);

    Url url_;
    int status_;
    HttpHeaders headers_;
    bool http_;
};

}  // namespace kit

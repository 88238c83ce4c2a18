#pragma once

#include "kit/UrlResponse.h"

#include <string>

namespace kit {

// An answer kept in a UrlCache: its head and its whole body.
class CachedUrlResponse {
public:
    CachedUrlResponse(UrlResponse response, std::string data)
        : response_(std::move(response)), data_(std::move(data)) {}

    const UrlResponse& response() const { return response_; }
    const std::string& data() const { return data_; }
    // What keeping it costs the cache, in bytes.
    size_t cost() const;

private:
    UrlResponse response_;
    std::string data_;
};

}  // namespace kit

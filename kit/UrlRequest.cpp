#include "kit/UrlRequest.h"

namespace kit {

UrlRequest::UrlRequest(Url url, CachePolicy cachePolicy, double timeoutInterval)
    : url_(std::move(url)), cachePolicy_(cachePolicy), timeoutInterval_(timeoutInterval) {}

}  // namespace kit

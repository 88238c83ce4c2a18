#include "kit/UrlConnectionDelegate.h"

namespace kit {

UrlConnectionDelegate::~UrlConnectionDelegate() = default;

std::optional<UrlRequest> UrlConnectionDelegate::connectionWillSendRequestRedirectResponse(
    UrlConnection&, const UrlRequest& request, const UrlResponse*) {
    return request;
}

void UrlConnectionDelegate::connectionDidReceiveResponse(UrlConnection&, const UrlResponse&) {}
void UrlConnectionDelegate::connectionDidReceiveData(UrlConnection&, std::string_view) {}
void UrlConnectionDelegate::connectionDidFinishLoading(UrlConnection&) {}
void UrlConnectionDelegate::connectionDidFailWithError(UrlConnection&, std::shared_ptr<const Error>) {}

}  // namespace kit

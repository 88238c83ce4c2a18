#include "ads/Request/ZEBRequest.h"

#include "ads/Request/ZEBRequestPrivate.h"

#include <fmt/format.h>

std::shared_ptr<ZEBRequest> ZEBRequest::request() {
    return std::make_shared<ZEBRequestPrivate>();
}

const std::string& ZEBRequest::sdkVersion() {
    static const std::string version = fmt::format("quor-sdk-i-v{}.{}.{}", 5, 0, 5);
    return version;
}

std::shared_ptr<ZEBRequest> ZEBRequest::copy() const {
    return std::make_shared<ZEBRequestPrivate>(*this);
}

#include "ads/Utility/ZEBDeployment.h"

#include "ads/ThirdParty/KBLStringEncoding.h"
#include "kit/Log.h"
#include "kit/SharedInstances.h"
#include "kit/Url.h"

#include <algorithm>
#include <cstdlib>

namespace {
// The build refuses a key that is not 32 hex digits, so it always decodes to 16 bytes.
std::array<uint8_t, 16> locationKeyOfBuild() {
    std::array<uint8_t, 16> key{};
    auto bytes = KBLStringEncoding::hexStringEncoding()->decode(VANTOR_LOCATION_KEY);
    if (bytes && bytes->size() == key.size()) std::copy(bytes->begin(), bytes->end(), key.begin());
    return key;
}
}  // namespace

ZEBDeployment ZEBDeployment::withOverride(std::optional<std::string_view> adServer) {
    ZEBDeployment deployment{VANTOR_AD_SERVER_URL,     VANTOR_AD_DOMAIN_SUFFIX, VANTOR_CLICK_DOMAIN_SUFFIX,
                             VANTOR_REACHABILITY_HOST, VANTOR_EVENT_REPORT_URL, locationKeyOfBuild()};
    if (!adServer) return deployment;
    auto url = kit::Url::parse(*adServer);
    if (!url || (url->scheme() != "http" && url->scheme() != "https") || !url->host() || url->host()->empty())
        return deployment;
    std::string base(*adServer);
    while (!base.empty() && base.back() == '/') base.pop_back();
    deployment.adServerURL = base;
    deployment.adServerDomainSuffix = *url->host();
    deployment.clickDomainSuffix = *url->host();
    deployment.reachabilityHostName = *url->host();
    deployment.eventReportURL = base + "/events";
    return deployment;
}

const ZEBDeployment& ZEBDeployment::current() {
    return kit::SharedInstances::current().get<ZEBDeployment>([] {
        const char* adServer = std::getenv("VANTOR_AD_SERVER");
        if (!adServer || !*adServer) return std::make_shared<ZEBDeployment>(withOverride(std::nullopt));
        auto deployment = std::make_shared<ZEBDeployment>(withOverride(adServer));
        if (deployment->adServerURL == withOverride(std::nullopt).adServerURL &&
            deployment->adServerURL != adServer)
            kit::Log::format("<Vantor> VANTOR_AD_SERVER is no http(s) URL with a host, using {}",
                             deployment->adServerURL);
        return deployment;
    });
}

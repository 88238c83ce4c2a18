#include "ads/Utility/ZEBDeployment.h"

#include "kit/Url.h"

#include <cstdlib>

namespace {
std::array<uint8_t, 16> keyFromHex(std::string_view hex) {
    std::array<uint8_t, 16> key{};
    auto nibble = [](char c) -> int {
        if (c >= '0' && c <= '9') return c - '0';
        if (c >= 'a' && c <= 'f') return c - 'a' + 10;
        if (c >= 'A' && c <= 'F') return c - 'A' + 10;
        return 0;
    };
    for (size_t i = 0; i < key.size() && 2 * i + 1 < hex.size(); ++i)
        key[i] = static_cast<uint8_t>(nibble(hex[2 * i]) << 4 | nibble(hex[2 * i + 1]));
    return key;
}
}  // namespace

ZEBDeployment ZEBDeployment::withOverride(std::optional<std::string_view> adServer) {
    ZEBDeployment deployment{VANTOR_AD_SERVER_URL,       VANTOR_AD_DOMAIN_SUFFIX,
                             VANTOR_CLICK_DOMAIN_SUFFIX, VANTOR_REACHABILITY_HOST,
                             VANTOR_EVENT_REPORT_URL,    keyFromHex(VANTOR_LOCATION_KEY)};
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
    static const ZEBDeployment deployment = [] {
        const char* adServer = std::getenv("VANTOR_AD_SERVER");
        return withOverride(adServer && *adServer ? std::optional<std::string_view>(adServer) : std::nullopt);
    }();
    return deployment;
}

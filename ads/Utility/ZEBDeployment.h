#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Where this build of the ad client talks to: the ad server and what is derived from it. Set when
// the client is built (CMake cache variables VANTOR_*); the environment variable VANTOR_AD_SERVER
// points a development build at another ad server. The defaults are the reference ad server on
// loopback.
struct ZEBDeployment {
    // Base URL of the ad server, without a trailing "/".
    std::string adServerURL;
    // Hosts ending in this are the ad server's own (click-tracking redirects, impression tickets).
    std::string adServerDomainSuffix;
    // Hosts ending in this are click redirects of the ad service.
    std::string clickDomainSuffix;
    // The host whose reachability gives the request's network type.
    std::string reachabilityHostName;
    // Where mediation events ("/imp", "/clk", "/nofill") are reported.
    std::string eventReportURL;
    // The key that enciphers precise locations; the ad server holds the same.
    std::array<uint8_t, 16> locationKey{};

    // Read once per platform: the build's values, or the environment's override.
    static const ZEBDeployment& current();

    // The build's values, with the ad server (and the hosts derived from it) replaced by `adServer`
    // when that is an http(s) URL with a host.
    static ZEBDeployment withOverride(std::optional<std::string_view> adServer);
};

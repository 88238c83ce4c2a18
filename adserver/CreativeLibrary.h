#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The house creatives: self-contained HTML pages sized for 320x50 and 768x90 banners and for the
// full screen. Plain ones (text, image) click through the server's click redirector; the others speak
// to the ad client through its script bridge (vmsg:// and pelko:// navigations, QUOR_ReceiveMessage).
class CreativeLibrary {
public:
    struct Context {
        // "http://host:port" of the server, as the client reached it.
        std::string origin;
        std::string slot;
        // The stored ad request this creative answers; carried into click and tracking addresses.
        int64_t requestId = 0;
        int width = 320, height = 50;
    };

    // Every creative name; "interstitial" is the full-screen one.
    static const std::vector<std::string>& names();
    // The banner creatives, served in turn when a slot names none.
    static const std::vector<std::string>& bannerNames();
    static bool has(std::string_view name);
    // "text, image, ..." for messages.
    static std::string nameList();

    // The page of creative `name` (one of names()).
    static std::string html(std::string_view name, const Context& context);
    // A creative whose page navigates away at once, to an address whose load fails.
    static std::string brokenPage(const Context& context);

    // Addresses on the server that the creatives use.
    static std::string clickUrl(const Context& context, std::string_view creative, std::string_view landing);
    static std::string trackingUrl(const Context& context, std::string_view creative, std::string_view event);
    static std::string storeUrl();
};

#include "kit/port/Platform.h"

#include "kit/Application.h"
#include "kit/RunLoop.h"
#include "kit/port/PortKey.h"
#include "kit/port/WebPage.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace kit {
namespace {
std::unique_ptr<Platform> gOwner;
// Stays set while the platform is destroyed, so that services' destructors can still reach it.
Platform* gPlatform = nullptr;
}  // namespace

Platform::Platform() = default;
Platform::~Platform() = default;

double Platform::secondsSince1970() const {
    using namespace std::chrono;
    return duration<double>(system_clock::now().time_since_epoch()).count();
}

void Platform::shutdown() {
    application().setDelegate(nullptr);
    // Dropping a pending call may release the last hold on something that still uses a shared
    // instance, and a shared instance may post as it goes: repeat until both are empty.
    while (true) {
        runLoop().clear(PortKey{});
        if (sharedInstances_.empty()) break;
        sharedInstances_.clear();
    }
}

std::unique_ptr<UrlLoader> Platform::createUrlLoader(const UrlRequest&, UrlLoader::Client&) {
    return nullptr;
}

std::unique_ptr<WebPage> Platform::createWebPage(WebView&) {
    return nullptr;
}

void Platform::install(std::unique_ptr<Platform> platform) {
    uninstall();
    gOwner = std::move(platform);
    gPlatform = gOwner.get();
}

void Platform::uninstall() {
    if (!gOwner) return;
    gOwner->shutdown();
    gOwner.reset();
    gPlatform = nullptr;
}

Platform& Platform::current() {
    if (!gPlatform) {
        std::fputs("kit: no platform installed\n", stderr);
        std::abort();
    }
    return *gPlatform;
}

}  // namespace kit

#include "kit/Platform.h"

#include "kit/RunLoop.h"
#include "kit/UrlCache.h"
#include "kit/WebPage.h"

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
    runLoop().clear();
}

std::unique_ptr<UrlLoader> Platform::makeUrlLoader(const UrlRequest&, UrlLoader::Client&) {
    return nullptr;
}

UrlCache& Platform::urlCache() {
    if (!urlCache_) urlCache_ = std::make_unique<UrlCache>();
    return *urlCache_;
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

bool Platform::isInstalled() {
    return gPlatform != nullptr;
}

Platform& Platform::current() {
    if (!gPlatform) {
        std::fputs("kit: no platform installed\n", stderr);
        std::abort();
    }
    return *gPlatform;
}

}  // namespace kit

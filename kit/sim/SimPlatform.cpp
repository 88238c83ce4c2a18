#include "kit/sim/SimPlatform.h"

#include "kit/sim/SimWebPage.h"

#include <fmt/format.h>

#include <random>

namespace kit::sim {

namespace {
std::filesystem::path makeFolder() {
    std::random_device random;
    auto folder =
        std::filesystem::temp_directory_path() / fmt::format("quiblo-sim-{:08x}{:08x}", random(), random());
    std::filesystem::create_directories(folder / "Caches");
    std::filesystem::create_directories(folder / "Documents");
    std::filesystem::create_directories(folder / "Resources");
    return folder;
}
}  // namespace

SimPlatform::SimPlatform()
    : clock_(new SimRunLoop),
      runLoop_(std::make_unique<RunLoop>(PortKey{}, std::unique_ptr<RunLoopImplementation>(clock_))),
      notificationCenter_(std::make_shared<NotificationCenter>()),
      folder_(makeFolder()),
      fileManager_(std::make_unique<FileManager>(
          FileManager::Folders{folder_ / "Caches", folder_ / "Documents", folder_ / "Resources"})),
      application_(std::make_shared<SimApplication>()) {
    PortKey key;
    device_.setUserInterfaceIdiom(key, UserInterfaceIdiom::Phone);
    device_.setModel(key, "Simulator");
    device_.setSystemName(key, "Linux");
    device_.setSystemVersion(key, "6.1.0");
    device_.setUniqueIdentifier(key, "sim-device-0001");
    device_.setMachine(key, "x86_64");
    device_.setName(key, "sim");
    screen_.setBounds(key, {0, 0, 480, 320});
    screen_.setScale(key, 1.0);
}

SimPlatform::~SimPlatform() {
    std::error_code ec;
    std::filesystem::remove_all(folder_, ec);
}

double SimPlatform::secondsSince1970() const {
    return kStartDate + (clock_->now() - SimRunLoop::kStartTime);
}

std::unique_ptr<WebPage> SimPlatform::createWebPage(WebView& view) {
    auto page = std::make_unique<SimWebPage>(view);
    page->setFinishesLoads(pagesFinishLoads_);
    return page;
}

SimPlatform& SimPlatform::install() {
    auto platform = std::make_unique<SimPlatform>();
    SimPlatform& ref = *platform;
    Platform::install(std::move(platform));
    return ref;
}

std::unique_ptr<UrlLoader> SimPlatform::createUrlLoader(const UrlRequest& request,
                                                        UrlLoader::Client& client) {
    return http_.createLoader(request, client);
}

SimPlatform& SimPlatform::current() {
    return static_cast<SimPlatform&>(Platform::current());
}

}  // namespace kit::sim

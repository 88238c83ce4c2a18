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
      runLoop_(std::make_unique<RunLoop>(std::unique_ptr<RunLoopImplementation>(clock_))),
      notificationCenter_(std::make_shared<NotificationCenter>()),
      folder_(makeFolder()),
      fileManager_(std::make_unique<FileManager>(
          FileManager::Folders{folder_ / "Caches", folder_ / "Documents", folder_ / "Resources"})),
      application_(std::make_shared<SimApplication>()) {
    device_.setUserInterfaceIdiom(UserInterfaceIdiom::Phone);
    device_.setModel("Simulator");
    device_.setSystemName("Linux");
    device_.setSystemVersion("6.1.0");
    device_.setUniqueIdentifier("sim-device-0001");
    device_.setMachine("x86_64");
    device_.setName("sim");
    screen_.setBounds({0, 0, 480, 320});
    screen_.setScale(1.0);
}

SimPlatform::~SimPlatform() {
    std::error_code ec;
    std::filesystem::remove_all(folder_, ec);
}

void SimPlatform::shutdown() {
    Platform::shutdown();
    application_->setDelegate(nullptr);
    runLoop_->clear();
}

double SimPlatform::secondsSince1970() const {
    return kStartDate + (clock_->now() - SimRunLoop::kStartTime);
}

std::unique_ptr<WebPage> SimPlatform::createWebPage(WebView& view) {
    return std::make_unique<SimWebPage>(view);
}

SimPlatform& SimPlatform::install() {
    auto platform = std::make_unique<SimPlatform>();
    SimPlatform& ref = *platform;
    Platform::install(std::move(platform));
    return ref;
}

std::unique_ptr<UrlLoader> SimPlatform::makeUrlLoader(const UrlRequest& request, UrlLoader::Client& client) {
    return http_.makeLoader(request, client);
}

SimPlatform& SimPlatform::current() {
    return static_cast<SimPlatform&>(Platform::current());
}

}  // namespace kit::sim

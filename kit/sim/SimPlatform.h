#pragma once

#include "kit/Bundle.h"
#include "kit/Device.h"
#include "kit/FileManager.h"
#include "kit/NotificationCenter.h"
#include "kit/RunLoop.h"
#include "kit/Screen.h"
#include "kit/UserDefaults.h"
#include "kit/port/Platform.h"
#include "kit/port/PortKey.h"
#include "kit/sim/SimApplication.h"
#include "kit/sim/SimAudioSession.h"
#include "kit/sim/SimHttp.h"
#include "kit/sim/SimReachability.h"
#include "kit/sim/SimRunLoop.h"
#include "kit/sim/SimSoundService.h"

#include <filesystem>
#include <memory>

namespace kit::sim {

// The simulated port: virtual time, scripted device and application, sounds recorded, settings
// in memory and files in a fresh temporary folder that goes away with the platform.
class SimPlatform : public Platform {
public:
    // Installs a fresh simulated platform and returns it.
    static SimPlatform& install();
    static SimPlatform& current();

    SimPlatform();
    ~SimPlatform() override;

    RunLoop& runLoop() override { return *runLoop_; }
    NotificationCenter& notificationCenter() override { return *notificationCenter_; }
    Application& application() override { return *application_; }
    Device& device() override { return device_; }
    Screen& screen() override { return screen_; }
    FileManager& fileManager() override { return *fileManager_; }
    UserDefaults& userDefaults() override { return userDefaults_; }
    SoundService& soundService() override { return sound_; }
    std::unique_ptr<UrlLoader> createUrlLoader(const UrlRequest& request, UrlLoader::Client& client) override;
    Bundle& mainBundle() override { return bundle_; }
    AudioSession& audioSession() override { return audio_; }
    std::shared_ptr<Reachability> createReachability(const std::string& hostName) override {
        return network_.create(hostName);
    }
    // Virtual: a fixed moment when the platform starts, moving with the run loop's clock.
    double secondsSince1970() const override;
    // A scripted page (SimWebPage).
    std::unique_ptr<WebPage> createWebPage(WebView& view) override;
    // Whether pages made from now on finish their loads by themselves (SimWebPage::setFinishesLoads).
    void setWebPagesFinishLoads(bool finish) { pagesFinishLoads_ = finish; }

    SimRunLoop& clock() { return *clock_; }
    SimApplication& simApplication() { return *application_; }
    SimSoundService& sounds() { return sound_; }
    const std::filesystem::path& folder() const { return folder_; }
    // Scripted HTTP answers and the log of requests sent.
    SimHttp& http() { return http_; }
    SimAudioSession& simAudioSession() { return audio_; }
    SimNetwork& network() { return network_; }
    // The wall clock when the platform starts: 2024-01-01 00:00:00 UTC.
    static constexpr double kStartDate = 1704067200.0;

private:
    // Declared first, destroyed last: everything else may still schedule or cancel calls.
    SimRunLoop* clock_;
    std::unique_ptr<RunLoop> runLoop_;
    std::shared_ptr<NotificationCenter> notificationCenter_;
    std::filesystem::path folder_;
    std::unique_ptr<FileManager> fileManager_;
    Device device_;
    Screen screen_;
    UserDefaults userDefaults_;
    SimSoundService sound_;
    std::shared_ptr<SimApplication> application_;
    SimHttp http_;
    Bundle bundle_;
    SimAudioSession audio_;
    SimNetwork network_;
    bool pagesFinishLoads_ = false;
};

}  // namespace kit::sim

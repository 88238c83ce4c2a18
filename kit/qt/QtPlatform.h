#pragma once

#include "kit/Bundle.h"
#include "kit/Device.h"
#include "kit/FileManager.h"
#include "kit/NotificationCenter.h"
#include "kit/RunLoop.h"
#include "kit/Screen.h"
#include "kit/UserDefaults.h"
#include "kit/port/Platform.h"
#include "kit/qt/PulseAudioSession.h"
#include "kit/qt/QtApplication.h"
#include "kit/qt/QtViewPeerFactory.h"
#include "kit/qt/SdlSoundService.h"

#include <memory>

class QNetworkAccessManager;

namespace kit::qt {

// The real port on a Linux desktop. Needs a QApplication. The device's screen is a window of the
// idiom's size in points (480×320 for a handset, 1024×768 for a tablet, landscape) at the
// display's device pixel ratio. Files live in the XDG folders, settings in the XDG config folder,
// and the application's resources beside its binary.
class QtPlatform : public Platform {
public:
    explicit QtPlatform(UserInterfaceIdiom idiom);
    ~QtPlatform() override;

    RunLoop& runLoop() override { return *runLoop_; }
    NotificationCenter& notificationCenter() override { return *notificationCenter_; }
    Application& application() override { return *application_; }
    Device& device() override { return device_; }
    Screen& screen() override { return screen_; }
    FileManager& fileManager() override { return *fileManager_; }
    UserDefaults& userDefaults() override { return *userDefaults_; }
    SoundService& soundService() override { return *sound_; }
    ViewPeerFactory* viewPeerFactory() override { return &peers_; }
    Bundle& mainBundle() override { return bundle_; }
    AudioSession& audioSession() override { return audio_; }
    std::shared_ptr<Reachability> createReachability(const std::string& hostName) override;
    // On one QNetworkAccessManager for the process, which also keeps its cookies.
    std::unique_ptr<UrlLoader> createUrlLoader(const UrlRequest& request, UrlLoader::Client& client) override;
    // A page on the real web engine (QtWebPage).
    std::unique_ptr<WebPage> createWebPage(WebView& view) override;

private:
    std::unique_ptr<RunLoop> runLoop_;
    std::shared_ptr<NotificationCenter> notificationCenter_;
    std::unique_ptr<FileManager> fileManager_;
    std::unique_ptr<UserDefaults> userDefaults_;
    Device device_;
    Screen screen_;
    std::unique_ptr<SdlSoundService> sound_;
    QtViewPeerFactory peers_;
    std::shared_ptr<QtApplication> application_;
    Bundle bundle_;
    PulseAudioSession audio_;
    std::unique_ptr<QNetworkAccessManager> network_;
};

}  // namespace kit::qt

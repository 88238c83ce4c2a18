#pragma once

#include <memory>
#include <string>

namespace kit {

class Application;
class AudioSession;
class Bundle;
class Reachability;
class Device;
class FileManager;
class NotificationCenter;
class RunLoop;
class Screen;
class SoundService;
class UserDefaults;
class ViewPeerFactory;
class WebPage;
class WebView;

// The services of one port (the Qt port in the application, the simulated port in unit tests).
// Exactly one platform is installed at a time; kit reaches it through the static accessors of each
// service (RunLoop::main(), Application::shared(), ...), never through globals of the app.
class Platform {
public:
    virtual ~Platform();

    // Installs `platform`, first shutting down and destroying the one installed before.
    static void install(std::unique_ptr<Platform> platform);
    static void uninstall();
    static bool isInstalled();
    // The installed platform; aborts with a message when there is none.
    static Platform& current();

    virtual RunLoop& runLoop() = 0;
    // The default notification center.
    virtual NotificationCenter& notificationCenter() = 0;
    virtual Application& application() = 0;
    virtual Device& device() = 0;
    virtual Screen& screen() = 0;
    virtual FileManager& fileManager() = 0;
    virtual UserDefaults& userDefaults() = 0;
    virtual SoundService& soundService() = 0;
    // Makes platform peers for views that enter a window; none on a port without a display.
    virtual ViewPeerFactory* viewPeerFactory() { return nullptr; }
    // The engine behind a new web view; none on a port without one (the view then loads nothing).
    virtual std::unique_ptr<WebPage> createWebPage(WebView& view);

    // Request context: the bundle's information, the audio route, reachability of a host and the
    // wall clock (seconds since 1970; virtual in the simulated port).
    virtual Bundle& mainBundle() = 0;
    virtual AudioSession& audioSession() = 0;
    virtual std::shared_ptr<Reachability> createReachability(const std::string& hostName) = 0;
    virtual double secondsSince1970() const;

protected:
    Platform() = default;
    // Called while the platform is still installed, before it is destroyed: drop pending work
    // whose destruction may still reach the platform.
    virtual void shutdown();
};

}  // namespace kit

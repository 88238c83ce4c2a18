#pragma once

#include "kit/SharedInstances.h"
#include "kit/port/UrlLoader.h"

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
// service (RunLoop::main(), Application::shared(), ...), never through globals of the app. The
// platform owns the process-wide instances (kit::shared<T>()), so nothing of the application's
// outlives it.
class Platform {
public:
    virtual ~Platform();
    Platform(const Platform&) = delete;
    Platform& operator=(const Platform&) = delete;

    // Installs `platform`, first shutting down and destroying the one installed before.
    static void install(std::unique_ptr<Platform> platform);
    static void uninstall();
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
    virtual Bundle& mainBundle() = 0;
    virtual AudioSession& audioSession() = 0;
    // Makes platform peers for views that enter a window; none on a port without a display.
    virtual ViewPeerFactory* viewPeerFactory() { return nullptr; }

    // The engine behind a new web view; none on a port without one (the view then loads nothing).
    virtual std::unique_ptr<WebPage> createWebPage(WebView& view);
    // One exchange for a UrlConnection (see UrlLoader); none on a port without a network.
    virtual std::unique_ptr<UrlLoader> createUrlLoader(const UrlRequest& request, UrlLoader::Client& client);
    // A watch on the reachability of `hostName`.
    virtual std::shared_ptr<Reachability> createReachability(const std::string& hostName) = 0;
    // The wall clock (virtual in the simulated port).
    virtual double secondsSince1970() const;

    SharedInstances& sharedInstances() { return sharedInstances_; }

protected:
    Platform();

private:
    // While still installed, before the port's services go: the application's delegate (and with
    // it the window and everything on screen), the pending calls and the shared instances.
    void shutdown();

    SharedInstances sharedInstances_;
};

}  // namespace kit

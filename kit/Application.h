#pragma once

#include "kit/Object.h"
#include "kit/Url.h"
#include "kit/Value.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

namespace kit {

enum class ApplicationState { Active = 0, Inactive = 1, Background = 2 };

// Interface orientations, as integers (values outside 1...4 do occur and mean none).
namespace InterfaceOrientation {
constexpr int Unknown = 0;
constexpr int Portrait = 1;
constexpr int PortraitUpsideDown = 2;
constexpr int LandscapeRight = 3;
constexpr int LandscapeLeft = 4;
inline bool isLandscape(int o) {
    return o == LandscapeRight || o == LandscapeLeft;
}
}  // namespace InterfaceOrientation

class Application;
class PortKey;
class Window;

// What the application's delegate hears; every method is optional. The delegate is made by class
// name (ClassRegistry) and holds the application's window.
class ApplicationDelegate : public Object {
public:
    ~ApplicationDelegate() override;
    virtual std::shared_ptr<Window> window() const { return nullptr; }
    virtual void setWindow(std::shared_ptr<Window>) {}
    virtual bool applicationDidFinishLaunching(Application&, const Value::Map& /*options*/) { return true; }
    virtual void applicationWillResignActive(Application&) {}
    virtual void applicationDidEnterBackground(Application&) {}
    virtual void applicationWillEnterForeground(Application&) {}
    virtual void applicationDidBecomeActive(Application&) {}
    virtual void applicationWillTerminate(Application&) {}
};

// The running application: its state and the six notices of its life, the status bar, the idle
// timer, opening URLs elsewhere and background tasks. The port drives the state changes (the Qt
// port from the window system, tests by hand); each change tells the delegate, then posts its
// notice on the default notification center.
class Application : public Object {
public:
    static constexpr const char* kDidFinishLaunchingNotification =
        "ApplicationDidFinishLaunchingNotification";
    static constexpr const char* kWillResignActiveNotification = "ApplicationWillResignActiveNotification";
    static constexpr const char* kDidBecomeActiveNotification = "ApplicationDidBecomeActiveNotification";
    static constexpr const char* kDidEnterBackgroundNotification =
        "ApplicationDidEnterBackgroundNotification";
    static constexpr const char* kWillEnterForegroundNotification =
        "ApplicationWillEnterForegroundNotification";
    static constexpr const char* kWillTerminateNotification = "ApplicationWillTerminateNotification";

    using BackgroundTaskId = uint64_t;
    static constexpr BackgroundTaskId kInvalidBackgroundTask = 0;

    Application();
    ~Application() override;

    static Application& shared();

    ApplicationState state() const { return state_; }
    ApplicationDelegate* delegate() const { return delegate_.get(); }
    void setDelegate(std::shared_ptr<ApplicationDelegate> delegate) { delegate_ = std::move(delegate); }

    // ---- For ports: state changes. Launching ends active; each call does nothing when it does not apply
    // (resignActive when not active, and so on).
    void finishLaunching(const PortKey&, const Value::Map& options = {});
    void resignActive(const PortKey&);
    void enterBackground(const PortKey&);
    void enterForeground(const PortKey&);
    void becomeActive(const PortKey&);
    void terminate(const PortKey&);
    bool hasFinishedLaunching() const { return launched_; }

    bool isStatusBarHidden() const { return statusBarHidden_; }
    virtual void setStatusBarHidden(bool hidden, bool animated = false);
    int statusBarOrientation() const { return statusBarOrientation_; }
    void setStatusBarOrientation(int orientation) { statusBarOrientation_ = orientation; }

    // The window that takes input; Window::makeKeyAndVisible() sets it. Not retained.
    std::shared_ptr<Window> keyWindow() const { return keyWindow_.lock(); }
    void setKeyWindow(const std::shared_ptr<Window>& window) { keyWindow_ = window; }

    // Whether the device may dim and sleep while the application runs.
    bool isIdleTimerDisabled() const { return idleTimerDisabled_; }
    void setIdleTimerDisabled(bool disabled);

    // Hands the URL to whatever the system opens it with; false when nothing does.
    virtual bool openUrl(const Url& url) = 0;
    virtual bool canOpenUrl(const Url& url) const = 0;

    // Background tasks: work that asks for time to finish. When that time runs out, the port calls
    // expireBackgroundTasks() and each open task's expiry handler runs once.
    // Whether this system has background tasks at all; without them, work simply runs on.
    virtual bool offersBackgroundTasks() const { return true; }
    BackgroundTaskId beginBackgroundTask(std::function<void()> expirationHandler);
    void endBackgroundTask(BackgroundTaskId task);
    size_t openBackgroundTaskCount() const { return backgroundTasks_.size(); }
    void expireBackgroundTasks(const PortKey&);

protected:
    // The port turns the idle timer on or off for real.
    virtual void idleTimerDidChange() {}

private:
    void post(const char* name);

    std::shared_ptr<ApplicationDelegate> delegate_;
    ApplicationState state_ = ApplicationState::Inactive;
    bool launched_ = false;
    bool terminated_ = false;
    bool statusBarHidden_ = false;
    int statusBarOrientation_ = InterfaceOrientation::LandscapeRight;
    bool idleTimerDisabled_ = false;
    std::weak_ptr<Window> keyWindow_;
    BackgroundTaskId nextTask_ = 1;
    std::map<BackgroundTaskId, std::function<void()>> backgroundTasks_;
};

}  // namespace kit

#include "kit/Application.h"

#include "kit/NotificationCenter.h"
#include "kit/port/Platform.h"
#include "kit/port/PortKey.h"

#include <vector>

namespace kit {

ApplicationDelegate::~ApplicationDelegate() = default;

Application::Application() = default;
Application::~Application() = default;

Application& Application::shared() {
    return Platform::current().application();
}

void Application::post(const char* name) {
    NotificationCenter::defaultCenter().post(name, this);
}

void Application::finishLaunching(const PortKey& key, const Value::Map& options) {
    if (launched_) return;
    launched_ = true;
    if (auto d = delegate_) d->applicationDidFinishLaunching(*this, options);
    post(kDidFinishLaunchingNotification);
    becomeActive(key);
}

void Application::resignActive(const PortKey&) {
    if (state_ != ApplicationState::Active) return;
    if (auto d = delegate_) d->applicationWillResignActive(*this);
    post(kWillResignActiveNotification);
    state_ = ApplicationState::Inactive;
}

void Application::enterBackground(const PortKey& key) {
    if (state_ == ApplicationState::Background) return;
    resignActive(key);
    state_ = ApplicationState::Background;
    if (auto d = delegate_) d->applicationDidEnterBackground(*this);
    post(kDidEnterBackgroundNotification);
}

void Application::enterForeground(const PortKey&) {
    if (state_ != ApplicationState::Background) return;
    if (auto d = delegate_) d->applicationWillEnterForeground(*this);
    post(kWillEnterForegroundNotification);
    state_ = ApplicationState::Inactive;
}

void Application::becomeActive(const PortKey& key) {
    if (state_ == ApplicationState::Active) return;
    enterForeground(key);
    state_ = ApplicationState::Active;
    if (auto d = delegate_) d->applicationDidBecomeActive(*this);
    post(kDidBecomeActiveNotification);
}

void Application::terminate(const PortKey&) {
    if (terminated_) return;
    terminated_ = true;
    if (auto d = delegate_) d->applicationWillTerminate(*this);
    post(kWillTerminateNotification);
}

void Application::setStatusBarHidden(bool hidden, bool /*animated*/) {
    statusBarHidden_ = hidden;
}

void Application::setIdleTimerDisabled(bool disabled) {
    if (idleTimerDisabled_ == disabled) return;
    idleTimerDisabled_ = disabled;
    idleTimerDidChange();
}

Application::BackgroundTaskId Application::beginBackgroundTask(std::function<void()> expirationHandler) {
    BackgroundTaskId id = nextTask_++;
    backgroundTasks_.emplace(id, std::move(expirationHandler));
    return id;
}

void Application::endBackgroundTask(BackgroundTaskId task) {
    backgroundTasks_.erase(task);
}

void Application::expireBackgroundTasks(const PortKey&) {
    // Handlers end their tasks (or not); either way every task that was open has expired.
    auto expiring = std::move(backgroundTasks_);
    backgroundTasks_.clear();
    for (auto& [id, handler] : expiring)
        if (handler) handler();
}

}  // namespace kit

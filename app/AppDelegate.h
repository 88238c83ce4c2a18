#pragma once

#include "kit/Application.h"
#include "kit/Window.h"

#include <memory>

// The application's delegate. The window and its root screen come from the main interface file;
// launching needs nothing else.
class AppDelegate : public kit::ApplicationDelegate {
public:
    std::shared_ptr<kit::Window> window() const override { return window_; }
    void setWindow(std::shared_ptr<kit::Window> window) override { window_ = std::move(window); }

    bool applicationDidFinishLaunching(kit::Application&, const kit::Value::Map&) override { return true; }

private:
    std::shared_ptr<kit::Window> window_;
};

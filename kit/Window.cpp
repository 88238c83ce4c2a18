#include "kit/Window.h"

#include "kit/Application.h"
#include "kit/Control.h"
#include "kit/RunLoop.h"
#include "kit/ViewController.h"
#include "kit/port/Platform.h"
#include "kit/port/PortKey.h"
#include "kit/port/ViewPeerFactory.h"

#include <utility>

namespace kit {

Window::Window(Rect frame) : View(frame) {}

Window::~Window() {
    // While this is still a window: its subviews leave it, and the peers go before the window's.
    orphanSubviews(true);
    detachPeers(*this);
}

void Window::setRootViewController(std::shared_ptr<ViewController> controller) {
    if (controller == rootViewController_) return;
    auto old = std::move(rootViewController_);
    rootViewController_ = controller;
    if (old && old->isViewLoaded()) {
        if (onScreen_) old->viewWillDisappear(false);
        old->view()->removeFromSuperview();
        if (onScreen_) old->viewDidDisappear(false);
    }
    if (controller) {
        auto view = controller->view();
        view->setFrame(bounds());
        view->setAutoresizingMask(Autoresizing::FlexibleWidth | Autoresizing::FlexibleHeight);
        if (onScreen_) controller->viewWillAppear(false);
        addSubview(view);
        if (onScreen_) controller->viewDidAppear(false);
    }
}

void Window::makeKeyAndVisible() {
    setHidden(false);
    Application::shared().setKeyWindow(retained(this));
    if (onScreen_) return;
    onScreen_ = true;
    auto root = rootViewController_;
    if (root) root->viewWillAppear(false);
    if (auto* factory = Platform::current().viewPeerFactory()) attachPeers(*this, *factory);
    if (root) root->viewDidAppear(false);
}

bool Window::isKeyWindow() const {
    return Application::shared().keyWindow().get() == this;
}

std::shared_ptr<Responder> Window::firstResponder() const {
    auto responder = firstResponder_.lock();
    // A responder that has left the window no longer holds its focus.
    if (responder && responder->responderWindow().get() != this) return nullptr;
    return responder;
}

// ---- Touches

namespace {
std::shared_ptr<Control> controlAt(const std::shared_ptr<View>& hit) {
    for (auto view = hit; view; view = view->superview()) {
        if (auto control = std::dynamic_pointer_cast<Control>(view)) return control;
    }
    return nullptr;
}
}  // namespace

std::shared_ptr<Control> Window::trackedControl() {
    if (!tracking_) return nullptr;
    if (tracking_->window().get() != this) {
        std::exchange(tracking_, nullptr)->cancelTracking();
        return nullptr;
    }
    return tracking_;
}

void Window::touchDown(const PortKey& key, Point point) {
    RunLoop::Turn turn(key);
    auto self = retained(this);
    if (auto previous = std::exchange(tracking_, nullptr)) previous->cancelTracking();  // a lost touch-up
    const Event event{EventType::Touches, RunLoop::main().now()};
    auto control = controlAt(hitTest(point, &event));
    if (!control || !control->isEnabled()) return;
    tracking_ = control;
    control->beginTracking(control->convertPointFromView(point, this));
}

void Window::touchMoved(const PortKey& key, Point point) {
    RunLoop::Turn turn(key);
    if (auto control = trackedControl())
        control->continueTracking(control->convertPointFromView(point, this));
}

void Window::touchUp(const PortKey& key, Point point) {
    RunLoop::Turn turn(key);
    if (auto control = trackedControl()) {
        tracking_ = nullptr;
        control->endTracking(control->convertPointFromView(point, this));
    }
}

void Window::touchCancelled(const PortKey& key) {
    RunLoop::Turn turn(key);
    if (auto control = std::exchange(tracking_, nullptr)) control->cancelTracking();
}

}  // namespace kit

#include "kit/ViewController.h"

#include "kit/Application.h"
#include "kit/Log.h"
#include "kit/RunLoop.h"
#include "kit/Screen.h"
#include "kit/View.h"
#include "kit/Window.h"

#include <algorithm>
#include <string_view>

namespace kit {

ViewController::ViewController() = default;

ViewController::~ViewController() = default;

std::shared_ptr<Window> ViewController::window() const {
    return view_ ? view_->window() : nullptr;
}

std::shared_ptr<Window> ViewController::responderWindow() const {
    return window();
}

// ---- The view

std::shared_ptr<View> ViewController::view() {
    if (!view_ && !loadingView_) {
        loadingView_ = true;
        loadView();
        loadingView_ = false;
        if (!view_) ViewController::loadView();  // an override that made nothing
        viewDidLoad();
    }
    return view_;
}

void ViewController::setView(std::shared_ptr<View> view) {
    view_ = std::move(view);
}

void ViewController::loadView() {
    auto view = std::make_shared<View>(Screen::main().bounds());
    view->setAutoresizingMask(Autoresizing::FlexibleWidth | Autoresizing::FlexibleHeight);
    setView(std::move(view));
}

void ViewController::viewWillAppear(bool) {}
void ViewController::viewDidAppear(bool) {}
void ViewController::viewWillDisappear(bool) {}
void ViewController::viewDidDisappear(bool) {}

bool ViewController::shouldAutorotateToInterfaceOrientation(int orientation) {
    return orientation == InterfaceOrientation::Portrait;
}

// ---- Modal presentation

void ViewController::presentViewController(std::shared_ptr<ViewController> controller, bool animated,
                                           std::function<void()> completion) {
    auto refuse = [&](std::string_view why) {
        Log::format("{} cannot present {}: {}", description(),
                    controller ? controller->description() : "nothing", why);
    };
    if (!controller || controller.get() == this) return refuse("no other controller to present");
    if (presented_) return refuse(fmt::format("already presenting {}", presented_->description()));
    if (inTransition_ || controller->inTransition_) return refuse("a transition is in progress");
    if (controller->presentingViewController() || controller->presented_) {
        return refuse("it is already in a presentation");
    }
    auto window = this->window();
    if (!window) return refuse("the presenting view is not in a window");

    auto presenter = retained(this);
    presented_ = controller;
    controller->presenting_ = presenter;
    inTransition_ = controller->inTransition_ = true;

    // Loaded and sized before it hears it will appear, so that it can lay itself out then.
    auto view = controller->view();
    view->setFrame(window->bounds());
    view->setAutoresizingMask(Autoresizing::FlexibleWidth | Autoresizing::FlexibleHeight);
    viewWillDisappear(animated);
    controller->viewWillAppear(animated);
    window->addSubview(view);

    RunLoop::main().postAfter(animated ? kAnimationDuration : 0,
                              [presenter, controller, animated, completion = std::move(completion)] {
                                  // Done before the calls, so that they may present in turn.
                                  presenter->inTransition_ = controller->inTransition_ = false;
                                  controller->viewDidAppear(animated);
                                  presenter->viewDidDisappear(animated);
                                  if (completion) completion();
                              });
}

void ViewController::dismissViewController(bool animated, std::function<void()> completion) {
    if (!presented_) {
        if (auto presenter = presentingViewController()) {
            presenter->dismissViewController(animated, std::move(completion));
        }
        return;
    }
    // Everything above this controller leaves: presented_, what it presents, and so on.
    std::vector<std::shared_ptr<ViewController>> stack;
    for (auto c = presented_; c; c = c->presented_) stack.push_back(c);
    const bool busy =
        inTransition_ || std::any_of(stack.begin(), stack.end(), [](auto& c) { return c->inTransition_; });
    if (busy) {
        Log::format("{} cannot dismiss {}: a transition is in progress", description(),
                    presented_->description());
        return;
    }
    auto presenter = retained(this);
    inTransition_ = true;
    for (auto& c : stack) c->inTransition_ = true;
    auto top = stack.back();

    top->viewWillDisappear(animated);
    viewWillAppear(animated);

    RunLoop::main().postAfter(
        animated ? kAnimationDuration : 0,
        [presenter, stack = std::move(stack), top, animated, completion = std::move(completion)] {
            for (auto it = stack.rbegin(); it != stack.rend(); ++it) {
                if ((*it)->isViewLoaded()) (*it)->view_->removeFromSuperview();
            }
            presenter->viewDidAppear(animated);
            top->viewDidDisappear(animated);
            // Unlinked only now: a dismissed controller still knows its presenter while it disappears.
            presenter->inTransition_ = false;
            presenter->presented_ = nullptr;
            for (auto& c : stack) {
                c->inTransition_ = false;
                c->presented_ = nullptr;
                c->presenting_.reset();
            }
            if (completion) completion();
        });
}

// ---- Containment

void ViewController::addChildViewController(std::shared_ptr<ViewController> child) {
    if (!child || child.get() == this || child->parentViewController().get() == this) return;
    child->removeFromParentViewController();
    child->parent_ = retained(this);
    children_.push_back(std::move(child));
}

void ViewController::removeFromParentViewController() {
    auto parent = parent_.lock();
    if (!parent) return;
    auto self = retained(this);
    std::erase(parent->children_, self);
    parent_.reset();
}

}  // namespace kit

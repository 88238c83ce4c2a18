#pragma once

#include "kit/Responder.h"

#include <functional>
#include <memory>
#include <vector>

namespace kit {

class View;

enum class ModalPresentationStyle { FullScreen = 0, PageSheet = 1, FormSheet = 2, CurrentContext = 3 };
enum class ModalTransitionStyle { CoverVertical = 0, FlipHorizontal = 1, CrossDissolve = 2, PartialCurl = 3 };

// Manages the view of one screen: loads it on first use, hears when it appears and disappears,
// and presents other controllers modally over the whole window.
//
// A presented controller's view is added on top of the presenter's window, filling its bounds
// (the presenter's view stays beneath it), and is removed when it is dismissed. The presenter
// retains the presented controller until then; the back link is not retained. A transition ends
// in the next turn of the run loop, or after kAnimationDuration of run-loop time when animated.
//
// Appearance calls, presenting B from A:
//   B's view loaded and sized to the window, A.viewWillDisappear, B.viewWillAppear, B's view added;
//   at the end of the transition: B.viewDidAppear, A.viewDidDisappear, completion.
// Dismissing B, the mirror:
//   B.viewWillDisappear, A.viewWillAppear;
//   at the end: B's view removed, A.viewDidAppear, B.viewDidDisappear, the links cleared,
//   completion.
// B still knows its presenter in its viewDidDisappear. When A dismisses a stack A > B > C, only
// the top (C) and A hear the calls, as B had already disappeared under C; B and C both leave.
class ViewController : public Responder {
public:
    static constexpr double kAnimationDuration = 0.3;

    ViewController();
    ~ViewController() override;

    // ---- The view
    // Loads the view on first use: loadView(), then viewDidLoad().
    std::shared_ptr<View> view();
    bool isViewLoaded() const { return view_ != nullptr; }
    // Sets the view without loading; null lets the next view() load it again.
    void setView(std::shared_ptr<View> view);

    // Appearance calls (see above). Subclasses call the base.
    virtual void viewWillAppear(bool animated);
    virtual void viewDidAppear(bool animated);
    virtual void viewWillDisappear(bool animated);
    virtual void viewDidDisappear(bool animated);

    // ---- Modal presentation. Every presentation style covers the whole window here; the styles
    // are kept for the port to choose how the transition looks.
    // Refused, with a log line, when this controller already presents one, either controller is
    // in a transition, `controller` is already presented, or this controller's view is in no
    // window.
    void presentViewController(std::shared_ptr<ViewController> controller, bool animated,
                               std::function<void()> completion = {});
    // Dismisses the controller this one presents (with any it presents in turn); with none, asks
    // this controller's presenter to dismiss it. Refused, with a log line, during a transition.
    void dismissViewController(bool animated, std::function<void()> completion = {});
    std::shared_ptr<ViewController> presentedViewController() const { return presented_; }
    std::shared_ptr<ViewController> presentingViewController() const { return presenting_.lock(); }
    ModalPresentationStyle modalPresentationStyle() const { return presentationStyle_; }
    void setModalPresentationStyle(ModalPresentationStyle style) { presentationStyle_ = style; }
    ModalTransitionStyle modalTransitionStyle() const { return transitionStyle_; }
    void setModalTransitionStyle(ModalTransitionStyle style) { transitionStyle_ = style; }

    // ---- Containment: a parent shows its children's views inside its own (the parent places
    // them). Children are retained; the parent is not.
    void addChildViewController(std::shared_ptr<ViewController> child);
    void removeFromParentViewController();
    std::shared_ptr<ViewController> parentViewController() const { return parent_.lock(); }
    const std::vector<std::shared_ptr<ViewController>>& childViewControllers() const { return children_; }

    // Whether the interface may turn to `orientation` (InterfaceOrientation). Portrait only unless
    // overridden.
    virtual bool shouldAutorotateToInterfaceOrientation(int orientation);

protected:
    // Makes the view. The default makes a plain view with the screen's bounds that follows its
    // superview's size. An override sets the view with setView().
    virtual void loadView();
    virtual void viewDidLoad() {}

    std::shared_ptr<Window> responderWindow() const override;

private:
    std::shared_ptr<Window> window() const;

    std::shared_ptr<View> view_;
    bool loadingView_ = false;
    std::shared_ptr<ViewController> presented_;
    std::weak_ptr<ViewController> presenting_;
    bool inTransition_ = false;
    std::weak_ptr<ViewController> parent_;
    std::vector<std::shared_ptr<ViewController>> children_;
    ModalPresentationStyle presentationStyle_ = ModalPresentationStyle::FullScreen;
    ModalTransitionStyle transitionStyle_ = ModalTransitionStyle::CoverVertical;
};

}  // namespace kit

#pragma once

#include "kit/View.h"

#include <memory>

namespace kit {

class Control;
class PortKey;
class ViewController;

// The root of a view tree: what the platform shows. From makeKeyAndVisible() on the window is on
// screen, and its whole tree has platform peers. It holds the root view controller, whose view
// fills it, keeps the first responder, and delivers touches.
class Window : public View {
public:
    explicit Window(Rect frame);
    ~Window() override;

    std::shared_ptr<ViewController> rootViewController() const { return rootViewController_; }
    // The controller's view fills the window and follows its size; the previous root's view
    // leaves. On screen, the two controllers hear the appearance calls (not animated).
    void setRootViewController(std::shared_ptr<ViewController> controller);

    // Puts the window on screen (unhidden) and makes it the application's key window. The root
    // view controller's view appears.
    void makeKeyAndVisible();
    bool isKeyWindow() const;
    bool isOnScreen() const { return onScreen_; }

    // The responder in this window that holds the focus, if any.
    std::shared_ptr<Responder> firstResponder() const;

    // Synthetic touches of one finger, points in window coordinates: the port feeds the window
    // system's input through these, tests call them directly. Each runs as a turn of the run loop.
    // A touch belongs to the view hit where it went down; when that view is inside a control (the
    // nearest one up the tree) and the control is enabled, the control tracks the touch: it is
    // highlighted while the finger is over it and sends TouchDown, drag events, and TouchUpInside
    // or TouchUpOutside. A control that leaves the window during the touch has it cancelled.
    void touchDown(const PortKey&, Point point);
    void touchMoved(const PortKey&, Point point);
    void touchUp(const PortKey&, Point point);
    void touchCancelled(const PortKey&);

private:
    friend class Responder;

    std::shared_ptr<Control> trackedControl();

    std::shared_ptr<ViewController> rootViewController_;
    std::weak_ptr<Responder> firstResponder_;
    std::shared_ptr<Control> tracking_;
    bool onScreen_ = false;
};

}  // namespace kit

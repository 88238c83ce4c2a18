#pragma once

#include "kit/Color.h"
#include "kit/Event.h"
#include "kit/Geometry.h"
#include "kit/Layer.h"
#include "kit/Responder.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace kit {

class PortKey;
class ViewPeer;
class ViewPeerFactory;
class Window;

// What changed in a view, as its platform peer is told.
enum class ViewChange {
    Frame,  // frame or bounds (a bounds origin change moves the subviews' peers too)
    Hidden,
    Alpha,
    Stacking,  // the view's place among its siblings changed
    Layer,     // corner radius, border, masks to bounds
    BackgroundColor,
    Content,     // what a subclass draws: titles, images, control state
    Transition,  // a transition (View::activeTransition()) began or ended on this container
};

// Which parts of a view stretch when its superview's size changes. Bits may be combined; along an
// axis with several flexible parts the change is shared among them in proportion to their sizes.
namespace Autoresizing {
constexpr uint32_t None = 0;
constexpr uint32_t FlexibleLeftMargin = 1 << 0;
constexpr uint32_t FlexibleWidth = 1 << 1;
constexpr uint32_t FlexibleRightMargin = 1 << 2;
constexpr uint32_t FlexibleTopMargin = 1 << 3;
constexpr uint32_t FlexibleHeight = 1 << 4;
constexpr uint32_t FlexibleBottomMargin = 1 << 5;
}  // namespace Autoresizing

// Built-in transitions of a container view (View::transition).
enum class ViewTransition { None = 0, FlipFromLeft = 1, FlipFromRight = 2, CurlUp = 3, CurlDown = 4 };

// A rectangle of the model view tree. A view is owned by its superview (and by whoever else holds
// it); the link to its superview is not retained, and the superview clears it when it goes, so it
// never dangles. The frame is in the superview's coordinates, the bounds in the view's own
// (bounds.origin is the point shown at the frame's top-left corner).
//
// The model is the truth: every property here is the current, final value, also while a port
// animates towards it. While the view is in a window on screen it may have a platform peer
// (ViewPeer) that is told of each change.
class View : public Responder {
public:
    explicit View(Rect frame = {});
    ~View() override;

    // ---- Geometry
    Rect frame() const { return frame_; }
    // Resizing resizes the bounds and lays out the subviews by their autoresizing masks.
    void setFrame(Rect frame);
    Rect bounds() const { return bounds_; }
    // The frame keeps its origin and takes the new size.
    void setBounds(Rect bounds);

    // ---- The tree
    std::shared_ptr<View> superview() const;
    // Back to front.
    const std::vector<std::shared_ptr<View>>& subviews() const { return subviews_; }
    // Adds on top. A view that has a superview is moved: it leaves the old one first.
    void addSubview(std::shared_ptr<View> view);
    void insertSubviewAtIndex(std::shared_ptr<View> view, size_t index);
    void bringSubviewToFront(const std::shared_ptr<View>& view);
    void sendSubviewToBack(const std::shared_ptr<View>& view);
    void removeFromSuperview();
    // The window this view is in (the window itself for a window), or none.
    std::shared_ptr<Window> window() const;

    int tag() const { return tag_; }
    void setTag(int tag) { tag_ = tag; }
    // Depth first, this view first, subviews back to front.
    std::shared_ptr<View> viewWithTag(int tag);

    // ---- Appearance
    bool isHidden() const { return hidden_; }
    void setHidden(bool hidden);
    double alpha() const { return alpha_; }
    // Clamped to 0...1. Virtual: some views only allow certain values.
    virtual void setAlpha(double alpha);
    Color backgroundColor() const { return backgroundColor_; }
    void setBackgroundColor(Color color);
    // A hint to the port that the view fills its bounds with opaque content.
    bool isOpaque() const { return opaque_; }
    void setOpaque(bool opaque) { opaque_ = opaque; }
    bool clipsToBounds() const { return layer_.masksToBounds(); }
    void setClipsToBounds(bool clips) { layer_.setMasksToBounds(clips); }
    Layer& layer() { return layer_; }
    const Layer& layer() const { return layer_; }

    // ---- Layout
    uint32_t autoresizingMask() const { return autoresizingMask_; }
    void setAutoresizingMask(uint32_t mask) { autoresizingMask_ = mask; }
    bool autoresizesSubviews() const { return autoresizesSubviews_; }
    void setAutoresizesSubviews(bool autoresizes) { autoresizesSubviews_ = autoresizes; }

    // ---- Touches
    bool isUserInteractionEnabled() const { return userInteractionEnabled_; }
    void setUserInteractionEnabled(bool enabled) { userInteractionEnabled_ = enabled; }
    // The deepest view at `point` (in this view's coordinates), front-most first; none when this
    // view is hidden, nearly transparent (alpha <= 0.01), does not take touches, or the point is
    // not inside it. Subviews reaching outside their superview are not hit there.
    virtual std::shared_ptr<View> hitTest(Point point, const Event* event);
    virtual bool pointInside(Point point, const Event* event);

    // Between this view's coordinates and `view`'s; a null `view` means the window (the root of
    // this view's tree).
    Point convertPointToView(Point point, const View* view) const;
    Point convertPointFromView(Point point, const View* view) const;

    // ---- Animations
    // Runs `changes` now, as they are the new model state; the completion runs on the run loop
    // `duration` seconds later (in a later turn even for no duration) with finished = true.
    static void animate(double duration, const std::function<void()>& changes,
                        std::function<void(bool finished)> completion = {});
    // Like animate(), with a built-in transition shown on `container` while it lasts
    // (activeTransition()).
    static void transition(const std::shared_ptr<View>& container, ViewTransition type, double duration,
                           const std::function<void()>& changes,
                           std::function<void(bool finished)> completion = {});
    ViewTransition activeTransition() const { return activeTransition_; }
    // While changes made inside animate() are applied: that animation's duration; else 0.
    static double inheritedAnimationDuration();

    // ---- Platform
    ViewPeer* peer(const PortKey&) const { return peer_.get(); }

protected:
    // Hooks, called once a move is complete: didMoveToSuperview(), then, when the window changed,
    // didMoveToWindow() on the view and each view beneath it.
    virtual void didMoveToSuperview() {}
    virtual void didMoveToWindow() {}

    // Tells the peer (if any) of a change of this view.
    void notifyPeer(ViewChange change);
    std::shared_ptr<Window> responderWindow() const override { return window(); }

    // For Window: gives `view` and the tree beneath it peers, or takes them away.
    static void attachPeers(View& view, ViewPeerFactory& factory);
    static void detachPeers(View& view);
    // Lets go of every subview at once (the view is going away); `inWindow` when they leave a window.
    void orphanSubviews(bool inWindow);

private:
    friend class Layer;

    void detachFromSuperview();
    void resizeSubviews(Size oldSize);
    void autoresize(Size oldSuperSize, Size newSuperSize);
    void restack(const std::shared_ptr<View>& view, size_t index);
    static void notifyMovedToWindow(View& view);

    Rect frame_;
    Rect bounds_;
    View* superview_ = nullptr;  // not retained: cleared by the superview when it goes
    std::vector<std::shared_ptr<View>> subviews_;
    int tag_ = 0;
    bool hidden_ = false;
    double alpha_ = 1;
    Color backgroundColor_ = Color::clear();
    bool opaque_ = true;
    uint32_t autoresizingMask_ = Autoresizing::None;
    bool autoresizesSubviews_ = true;
    bool userInteractionEnabled_ = true;
    ViewTransition activeTransition_ = ViewTransition::None;
    uint64_t transitionSerial_ = 0;
    Layer layer_{*this};
    std::unique_ptr<ViewPeer> peer_;
};

}  // namespace kit

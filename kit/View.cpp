#include "kit/View.h"

#include "kit/RunLoop.h"
#include "kit/Window.h"
#include "kit/port/Platform.h"
#include "kit/port/ViewPeer.h"
#include "kit/port/ViewPeerFactory.h"

#include <algorithm>
#include <utility>

namespace kit {

namespace {

// The duration of the animate() whose changes are being applied; 0 outside.
double gAnimationDuration = 0;

// Below this a view counts as invisible to touches.
constexpr double kMinimumTouchAlpha = 0.01;

Point toSuperview(const View& view, Point p) {
    return {p.x - view.bounds().origin.x + view.frame().origin.x,
            p.y - view.bounds().origin.y + view.frame().origin.y};
}

Point fromSuperview(const View& view, Point p) {
    return {p.x - view.frame().origin.x + view.bounds().origin.x,
            p.y - view.frame().origin.y + view.bounds().origin.y};
}

// From the root of the tree down to `view`.
Point fromRoot(const View& view, Point p) {
    auto superview = view.superview();
    return fromSuperview(view, superview ? fromRoot(*superview, p) : p);
}

// Shares `delta` among the flexible parts of one axis in proportion to their sizes (equally when
// they are all empty). Returns the new position and length.
std::pair<double, double> resizeAxis(double position, double length, double oldExtent, double newExtent,
                                     bool flexibleStart, bool flexibleLength, bool flexibleEnd) {
    const int flexible = flexibleStart + flexibleLength + flexibleEnd;
    const double delta = newExtent - oldExtent;
    if (flexible == 0 || delta == 0) return {position, length};
    const double start = flexibleStart ? std::max(position, 0.0) : 0;
    const double size = flexibleLength ? std::max(length, 0.0) : 0;
    const double end = flexibleEnd ? std::max(oldExtent - position - length, 0.0) : 0;
    const double total = start + size + end;
    auto share = [&](bool isFlexible, double part) {
        if (!isFlexible) return 0.0;
        return total > 0 ? delta * part / total : delta / flexible;
    };
    position += share(flexibleStart, start);
    length = std::max(length + share(flexibleLength, size), 0.0);
    return {position, length};
}

}  // namespace

View::View(Rect frame) : frame_(frame), bounds_({0, 0}, frame.size) {}

View::~View() {
    orphanSubviews(false);
}

void View::orphanSubviews(bool inWindow) {
    auto subviews = std::move(subviews_);
    subviews_.clear();
    for (auto it = subviews.rbegin(); it != subviews.rend(); ++it) {  // front to back, as detachPeers()
        detachPeers(**it);
        (*it)->superview_ = nullptr;
    }
    for (auto& subview : subviews) {
        subview->didMoveToSuperview();
        if (inWindow) notifyMovedToWindow(*subview);
    }
}

// ---- Geometry

void View::setFrame(Rect frame) {
    const Size oldSize = bounds_.size;
    frame_ = frame;
    bounds_.size = frame.size;
    notifyPeer(ViewChange::Frame);
    if (oldSize != frame.size) resizeSubviews(oldSize);
}

void View::setBounds(Rect bounds) {
    const Rect old = bounds_;
    bounds_ = bounds;
    frame_.size = bounds.size;
    notifyPeer(ViewChange::Frame);
    if (old.origin != bounds.origin) {
        for (auto& subview : subviews_) subview->notifyPeer(ViewChange::Frame);
    }
    if (old.size != bounds.size) resizeSubviews(old.size);
}

void View::resizeSubviews(Size oldSize) {
    if (!autoresizesSubviews_) return;
    auto subviews = subviews_;  // a subview's layout may change the tree
    for (auto& subview : subviews) subview->autoresize(oldSize, bounds_.size);
}

void View::autoresize(Size oldSuperSize, Size newSuperSize) {
    if (autoresizingMask_ == Autoresizing::None) return;
    const uint32_t m = autoresizingMask_;
    auto [x, width] = resizeAxis(frame_.minX(), frame_.width(), oldSuperSize.width, newSuperSize.width,
                                 m & Autoresizing::FlexibleLeftMargin, m & Autoresizing::FlexibleWidth,
                                 m & Autoresizing::FlexibleRightMargin);
    auto [y, height] = resizeAxis(frame_.minY(), frame_.height(), oldSuperSize.height, newSuperSize.height,
                                  m & Autoresizing::FlexibleTopMargin, m & Autoresizing::FlexibleHeight,
                                  m & Autoresizing::FlexibleBottomMargin);
    Rect frame(x, y, width, height);
    if (frame != frame_) setFrame(frame);
}

// ---- The tree

std::shared_ptr<View> View::superview() const {
    // Empty while the superview is still being constructed.
    return superview_ ? std::static_pointer_cast<View>(superview_->weak_from_this().lock()) : nullptr;
}

std::shared_ptr<Window> View::window() const {
    const View* root = this;
    while (root->superview_) root = root->superview_;
    auto* window = dynamic_cast<const Window*>(root);
    if (!window) return nullptr;
    return std::static_pointer_cast<Window>(std::const_pointer_cast<Object>(window->weak_from_this().lock()));
}

void View::addSubview(std::shared_ptr<View> view) {
    insertSubviewAtIndex(std::move(view), subviews_.size());
}

void View::insertSubviewAtIndex(std::shared_ptr<View> view, size_t index) {
    if (!view) return;
    for (const View* ancestor = this; ancestor; ancestor = ancestor->superview_) {
        if (ancestor == view.get()) return;  // a view cannot contain itself
    }
    if (view->superview_ == this) {
        restack(view, index);
        return;
    }
    const auto oldWindow = view->window();
    view->detachFromSuperview();
    subviews_.insert(subviews_.begin() + static_cast<std::ptrdiff_t>(std::min(index, subviews_.size())),
                     view);
    view->superview_ = this;
    const auto newWindow = view->window();
    if (newWindow && newWindow->isOnScreen()) {
        if (auto* factory = Platform::current().viewPeerFactory()) attachPeers(*view, *factory);
    }
    view->didMoveToSuperview();
    if (oldWindow != newWindow) notifyMovedToWindow(*view);
}

void View::restack(const std::shared_ptr<View>& view, size_t index) {
    auto it = std::find(subviews_.begin(), subviews_.end(), view);
    if (it == subviews_.end()) return;
    const size_t from = static_cast<size_t>(it - subviews_.begin());
    index = std::min(index, subviews_.size() - 1);
    if (from == index) return;
    subviews_.erase(it);
    subviews_.insert(subviews_.begin() + static_cast<std::ptrdiff_t>(index), view);
    view->notifyPeer(ViewChange::Stacking);
}

void View::bringSubviewToFront(const std::shared_ptr<View>& view) {
    restack(view, subviews_.size());
}

void View::sendSubviewToBack(const std::shared_ptr<View>& view) {
    restack(view, 0);
}

void View::detachFromSuperview() {
    View* superview = std::exchange(superview_, nullptr);
    if (!superview) return;
    detachPeers(*this);
    auto& siblings = superview->subviews_;
    auto it = std::find_if(siblings.begin(), siblings.end(), [this](auto& v) { return v.get() == this; });
    if (it != siblings.end()) siblings.erase(it);
}

void View::removeFromSuperview() {
    if (!superview_) return;
    auto self = retained(this);  // the superview may hold the last reference
    const auto oldWindow = window();
    detachFromSuperview();
    didMoveToSuperview();
    if (oldWindow) notifyMovedToWindow(*this);
}

void View::notifyMovedToWindow(View& view) {
    view.didMoveToWindow();
    auto subviews = view.subviews_;
    for (auto& subview : subviews) notifyMovedToWindow(*subview);
}

std::shared_ptr<View> View::viewWithTag(int tag) {
    if (tag_ == tag) return retained(this);
    for (auto& subview : subviews_) {
        if (auto found = subview->viewWithTag(tag)) return found;
    }
    return nullptr;
}

// ---- Appearance

void View::setHidden(bool hidden) {
    if (hidden_ == hidden) return;
    hidden_ = hidden;
    notifyPeer(ViewChange::Hidden);
}

void View::setAlpha(double alpha) {
    alpha = std::clamp(alpha, 0.0, 1.0);
    if (alpha_ == alpha) return;
    alpha_ = alpha;
    notifyPeer(ViewChange::Alpha);
}

void View::setBackgroundColor(Color color) {
    if (backgroundColor_ == color) return;
    backgroundColor_ = color;
    notifyPeer(ViewChange::BackgroundColor);
}

// ---- Touches

std::shared_ptr<View> View::hitTest(Point point, const Event* event) {
    if (hidden_ || !userInteractionEnabled_ || alpha_ <= kMinimumTouchAlpha) return nullptr;
    if (!pointInside(point, event)) return nullptr;
    auto subviews = subviews_;  // an override may change the tree
    for (auto it = subviews.rbegin(); it != subviews.rend(); ++it) {
        if (auto hit = (*it)->hitTest(fromSuperview(**it, point), event)) return hit;
    }
    return retained(this);
}

bool View::pointInside(Point point, const Event*) {
    return bounds_.contains(point);
}

Point View::convertPointToView(Point point, const View* view) const {
    for (const View* v = this; v->superview_; v = v->superview_) point = toSuperview(*v, point);
    return view ? fromRoot(*view, point) : point;
}

Point View::convertPointFromView(Point point, const View* view) const {
    if (view) return view->convertPointToView(point, this);
    return fromRoot(*this, point);
}

// ---- Animations

void View::animate(double duration, const std::function<void()>& changes,
                   std::function<void(bool finished)> completion) {
    duration = std::max(duration, 0.0);
    if (changes) {
        struct Scope {
            double outer = gAnimationDuration;
            ~Scope() { gAnimationDuration = outer; }
        } scope;
        gAnimationDuration = duration;
        changes();
    }
    if (completion) {
        RunLoop::main().postAfter(duration, [completion = std::move(completion)] { completion(true); });
    }
}

void View::transition(const std::shared_ptr<View>& container, ViewTransition type, double duration,
                      const std::function<void()>& changes, std::function<void(bool finished)> completion) {
    if (!container) {
        animate(duration, changes, std::move(completion));
        return;
    }
    // A later transition on the same container takes over; the earlier one's end leaves it be.
    const uint64_t serial = ++container->transitionSerial_;
    container->activeTransition_ = type;
    container->notifyPeer(ViewChange::Transition);
    animate(duration, changes, [container, serial, completion = std::move(completion)](bool finished) {
        if (container->transitionSerial_ == serial && container->activeTransition_ != ViewTransition::None) {
            container->activeTransition_ = ViewTransition::None;
            container->notifyPeer(ViewChange::Transition);
        }
        if (completion) completion(finished);
    });
}

double View::inheritedAnimationDuration() {
    return gAnimationDuration;
}

// ---- Platform

void View::notifyPeer(ViewChange change) {
    if (peer_) peer_->viewDidChange(change);
}

void View::attachPeers(View& view, ViewPeerFactory& factory) {
    view.peer_ = factory.createPeer(view);
    auto subviews = view.subviews_;
    for (auto& subview : subviews) attachPeers(*subview, factory);
}

void View::detachPeers(View& view) {
    for (auto it = view.subviews_.rbegin(); it != view.subviews_.rend(); ++it) detachPeers(**it);
    view.peer_.reset();
}

}  // namespace kit

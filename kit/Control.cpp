#include "kit/Control.h"

#include <algorithm>

namespace kit {

Control::Control(Rect frame) : View(frame) {}

Control::~Control() = default;

void Control::setEnabled(bool enabled) {
    if (enabled_ == enabled) return;
    enabled_ = enabled;
    stateDidChange();
}

void Control::setHighlighted(bool highlighted) {
    if (highlighted_ == highlighted) return;
    highlighted_ = highlighted;
    stateDidChange();
}

void Control::setSelected(bool selected) {
    if (selected_ == selected) return;
    selected_ = selected;
    stateDidChange();
}

uint32_t Control::state() const {
    uint32_t state = ControlState::Normal;
    if (highlighted_) state |= ControlState::Highlighted;
    if (!enabled_) state |= ControlState::Disabled;
    if (selected_) state |= ControlState::Selected;
    return state;
}

void Control::stateDidChange() {
    notifyPeer(ViewChange::Content);
}

void Control::addRegistration(std::weak_ptr<const void> target, Action action, uint32_t events) {
    if (!action || events == 0) return;
    registrations_.push_back(
        std::make_shared<Registration>(Registration{std::move(target), std::move(action), events}));
}

void Control::addActionForControlEvents(Action action, uint32_t events) {
    addRegistration({}, std::move(action), events);
}

namespace {
// Whether two weak references name the same owner (also once it has gone).
bool sameOwner(const std::weak_ptr<const void>& a, const std::weak_ptr<const void>& b) {
    return !a.owner_before(b) && !b.owner_before(a);
}

template <class Registration>
bool targetHasGone(const Registration& registration) {
    return !sameOwner(registration.target, {}) && registration.target.expired();
}
}  // namespace

void Control::removeTargetForControlEvents(const std::weak_ptr<const void>& target, uint32_t events) {
    const bool everyone = sameOwner(target, {});
    for (auto& registration : registrations_) {
        if (everyone || sameOwner(registration->target, target)) registration->events &= ~events;
    }
    std::erase_if(registrations_, [](const auto& registration) { return registration->events == 0; });
}

void Control::sendActionsForControlEvents(uint32_t events) {
    auto keep = retained(this);  // an action may release the control
    // Targets that have gone take their registrations with them.
    std::erase_if(registrations_, [](const auto& registration) { return targetHasGone(*registration); });
    // Actions may add or remove registrations; a removed one has no events left by its turn.
    auto registrations = registrations_;
    for (auto& registration : registrations) {
        if (registration->events & events) registration->action(*this);
    }
}

uint32_t Control::allControlEvents() const {
    uint32_t events = 0;
    for (const auto& registration : registrations_)
        if (!targetHasGone(*registration)) events |= registration->events;
    return events;
}

void Control::beginTracking(Point point) {
    auto self = retained(this);
    tracking_ = true;
    touchInside_ = pointInside(point, nullptr);
    setHighlighted(true);
    sendActionsForControlEvents(ControlEvent::TouchDown);
}

void Control::continueTracking(Point point) {
    if (!tracking_) return;
    auto self = retained(this);
    const bool inside = pointInside(point, nullptr);
    if (inside != touchInside_) {
        touchInside_ = inside;
        setHighlighted(inside);
        sendActionsForControlEvents(inside ? ControlEvent::TouchDragEnter : ControlEvent::TouchDragExit);
    }
    if (tracking_) {
        sendActionsForControlEvents(inside ? ControlEvent::TouchDragInside : ControlEvent::TouchDragOutside);
    }
}

void Control::endTracking(Point point) {
    if (!tracking_) return;
    auto self = retained(this);
    tracking_ = false;
    touchInside_ = pointInside(point, nullptr);
    setHighlighted(false);
    sendActionsForControlEvents(touchInside_ ? ControlEvent::TouchUpInside : ControlEvent::TouchUpOutside);
    touchInside_ = false;
}

void Control::cancelTracking() {
    if (!tracking_) return;
    auto self = retained(this);
    tracking_ = false;
    touchInside_ = false;
    setHighlighted(false);
    sendActionsForControlEvents(ControlEvent::TouchCancel);
}

}  // namespace kit

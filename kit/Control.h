#pragma once

#include "kit/View.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace kit {

// State bits of a control; Button keeps titles, colours and images per state.
namespace ControlState {
constexpr uint32_t Normal = 0;
constexpr uint32_t Highlighted = 1 << 0;
constexpr uint32_t Disabled = 1 << 1;
constexpr uint32_t Selected = 1 << 2;
constexpr uint32_t Application = 0x00FF0000;  // for the application's own use
constexpr uint32_t Reserved = 0xFF000000;     // for kit's own use
}  // namespace ControlState

// What a control reports to its actions.
namespace ControlEvent {
constexpr uint32_t TouchDown = 1 << 0;
constexpr uint32_t TouchDownRepeat = 1 << 1;
constexpr uint32_t TouchDragInside = 1 << 2;
constexpr uint32_t TouchDragOutside = 1 << 3;
constexpr uint32_t TouchDragEnter = 1 << 4;
constexpr uint32_t TouchDragExit = 1 << 5;
constexpr uint32_t TouchUpInside = 1 << 6;
constexpr uint32_t TouchUpOutside = 1 << 7;
constexpr uint32_t TouchCancel = 1 << 8;
constexpr uint32_t ValueChanged = 1 << 12;
constexpr uint32_t AllTouchEvents = 0x00000FFF;
constexpr uint32_t AllEvents = 0xFFFFFFFF;
}  // namespace ControlEvent

// A view that turns touches into events and runs the actions registered for them.
class Control : public View {
public:
    using Action = std::function<void(Control& sender)>;

    explicit Control(Rect frame = {});
    ~Control() override;

    bool isEnabled() const { return enabled_; }
    void setEnabled(bool enabled);
    bool isHighlighted() const { return highlighted_; }
    void setHighlighted(bool highlighted);
    bool isSelected() const { return selected_; }
    void setSelected(bool selected);
    // The ControlState bits of the three flags above.
    uint32_t state() const;

    // Calls `action` on `target` for each of `events`. The registration does not keep the target:
    // once it is gone its actions are skipped and dropped.
    template <class T>
    void addTargetActionForControlEvents(const std::shared_ptr<T>& target, void (T::*action)(Control& sender),
                                         uint32_t events) {
        std::weak_ptr<T> weak = target;
        addRegistration(
            weak,
            [weak, action](Control& sender) {
                if (auto receiver = weak.lock()) (receiver.get()->*action)(sender);
            },
            events);
    }
    // An action of the control's own, with no target; it owns what it captures, so it should
    // capture weakly what may go away before the control.
    void addActionForControlEvents(Action action, uint32_t events);
    // Takes `events` off the registrations of `target`; an empty `target` means every registration.
    void removeTargetForControlEvents(const std::weak_ptr<const void>& target, uint32_t events);
    // Runs, in the order they were added, the actions registered for any of `events`; each once.
    // An action removed by an earlier one does not run.
    void sendActionsForControlEvents(uint32_t events);
    // The events that have at least one action.
    uint32_t allControlEvents() const;

    // ---- Touch tracking, driven by the window. Points are in this control's coordinates.
    virtual void beginTracking(Point point);
    virtual void continueTracking(Point point);
    virtual void endTracking(Point point);
    virtual void cancelTracking();
    bool isTracking() const { return tracking_; }
    // Whether the tracked touch is over the control.
    bool isTouchInside() const { return touchInside_; }

protected:
    // After enabled, highlighted or selected changed. The base tells the peer of new content.
    virtual void stateDidChange();

private:
    struct Registration {
        std::weak_ptr<const void> target;
        Action action;
        uint32_t events;
    };
    void addRegistration(std::weak_ptr<const void> target, Action action, uint32_t events);

    std::vector<std::shared_ptr<Registration>> registrations_;
    bool enabled_ = true;
    bool highlighted_ = false;
    bool selected_ = false;
    bool tracking_ = false;
    bool touchInside_ = false;
};

}  // namespace kit

#include "kit/Button.h"
#include "kit/Control.h"
#include "kit/Image.h"
#include "tests/support/SimTest.h"

using kit::Button;
using kit::Control;
namespace ControlEvent = kit::ControlEvent;
namespace ControlState = kit::ControlState;
using Log = std::vector<std::string>;

namespace {
class ControlTest : public SimTest {};

struct Receiver : kit::Object {
    Log* log;
    std::string name;
    Receiver(Log& l, std::string n) : log(&l), name(std::move(n)) {}
    void act(Control&) { log->push_back(name); }
};
}  // namespace

TEST_F(ControlTest, ActionsRunForTheirEventsInOrderAndCanBeRemovedByTarget) {
    auto control = std::make_shared<Control>();
    Log log;
    auto first = std::make_shared<Receiver>(log, "first");
    auto second = std::make_shared<Receiver>(log, "second");
    control->addTargetActionForControlEvents(first, &Receiver::act,
                                             ControlEvent::TouchDown | ControlEvent::TouchUpInside);
    control->addTargetActionForControlEvents(second, &Receiver::act, ControlEvent::TouchUpInside);
    control->addActionForControlEvents([&](Control&) { log.push_back("own"); }, ControlEvent::ValueChanged);

    control->sendActionsForControlEvents(ControlEvent::TouchDown | ControlEvent::TouchUpInside);
    control->sendActionsForControlEvents(ControlEvent::TouchUpOutside);
    EXPECT_EQ(log, (Log{"first", "second"}));  // once each, though "first" matches two events

    control->removeTargetForControlEvents(first, ControlEvent::TouchUpInside);  // keeps its touch-down
    log.clear();
    control->sendActionsForControlEvents(ControlEvent::TouchUpInside);
    control->sendActionsForControlEvents(ControlEvent::TouchDown);
    EXPECT_EQ(log, (Log{"second", "first"}));

    control->removeTargetForControlEvents({}, ControlEvent::AllEvents);
    EXPECT_EQ(control->allControlEvents(), 0u);

    // A target that is gone is neither called nor kept.
    control->addTargetActionForControlEvents(first, &Receiver::act, ControlEvent::TouchDown);
    EXPECT_EQ(control->allControlEvents(), ControlEvent::TouchDown);
    first.reset();
    EXPECT_EQ(control->allControlEvents(), 0u);
    log.clear();
    control->sendActionsForControlEvents(ControlEvent::TouchDown);
    EXPECT_TRUE(log.empty());
}

TEST_F(ControlTest, ActionsMayRemoveOthersOrReleaseTheControlDuringDispatch) {
    auto control = std::make_shared<Control>();
    std::weak_ptr<Control> watch = control;
    Log log;
    auto removed = std::make_shared<Receiver>(log, "removed");
    control->addActionForControlEvents(
        [&](Control& sender) {
            sender.removeTargetForControlEvents(removed, ControlEvent::AllEvents);
            control.reset();
        },
        ControlEvent::TouchDown);
    control->addTargetActionForControlEvents(removed, &Receiver::act, ControlEvent::TouchDown);
    control->addActionForControlEvents([&](Control& sender) { log.push_back(sender.className()); },
                                       ControlEvent::TouchDown);
    auto raw = control.get();
    raw->sendActionsForControlEvents(ControlEvent::TouchDown);  // alive until the dispatch ends
    EXPECT_EQ(log, Log{"Control"});
    EXPECT_TRUE(watch.expired());
}

TEST_F(ControlTest, ButtonValuesPerStateFallBackToNormal) {
    auto button = Button::buttonWithType(kit::ButtonType::Custom);
    EXPECT_EQ(button->currentTitle(), std::nullopt);
    EXPECT_EQ(button->currentTitleColor(), kit::Color::white());
    EXPECT_NE(Button::buttonWithType(kit::ButtonType::RoundedRect)->currentTitleColor(), kit::Color::white());

    for (uint32_t state : {ControlState::Normal, ControlState::Application, ControlState::Reserved})
        button->setTitleForState("Music 1", state);
    button->setTitleForState("Pressed", ControlState::Highlighted);
    button->setTitleForState("", ControlState::Disabled);  // empty is a title, not "unset"
    EXPECT_EQ(button->titleForState(ControlState::Application), "Music 1");
    EXPECT_EQ(button->titleForState(ControlState::Selected), "Music 1");
    button->setHighlighted(true);
    EXPECT_EQ(button->currentTitle(), "Pressed");
    button->setTitleForState(std::nullopt, ControlState::Highlighted);
    EXPECT_EQ(button->currentTitle(), "Music 1");
    button->setEnabled(false);
    EXPECT_EQ(button->state(), ControlState::Highlighted | ControlState::Disabled);
    EXPECT_EQ(button->currentTitle(), "Music 1");  // a combined state is looked up as a whole
    button->setHighlighted(false);
    EXPECT_EQ(button->currentTitle(), "");

    const kit::Color red{1, 0, 0, 1};
    button->setTitleColorForState(red, ControlState::Disabled);
    EXPECT_EQ(button->currentTitleColor(), red);
    auto image = kit::Image::fromRgba({0, 0, 0, 255}, 1, 1);
    button->setImageForState(image, ControlState::Normal);
    EXPECT_EQ(button->currentImage(), image);
}

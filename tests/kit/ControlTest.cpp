#include "kit/Button.h"
#include "kit/Control.h"
#include "kit/Image.h"

#include "tests/support/SimTest.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using kit::Button;
using kit::Control;
namespace ControlEvent = kit::ControlEvent;
namespace ControlState = kit::ControlState;
using Log = std::vector<std::string>;

namespace {
class ControlTest : public SimTest {};
}  // namespace

TEST_F(ControlTest, ActionsRunForTheirEventsInOrderAndCanBeRemoved) {
    auto control = std::make_shared<Control>();
    Log log;
    int first = 0, second = 0;
    auto note = [&](std::string line) { return [&log, line](Control&) { log.push_back(line); }; };
    control->addTargetActionForControlEvents(&first, note("first"),
                                             ControlEvent::TouchDown | ControlEvent::TouchUpInside);
    control->addTargetActionForControlEvents(&second, note("second"), ControlEvent::TouchUpInside);
    control->addTargetActionForControlEvents(nullptr, note("anonymous"), ControlEvent::ValueChanged);

    control->sendActionsForControlEvents(ControlEvent::TouchDown | ControlEvent::TouchUpInside);
    control->sendActionsForControlEvents(ControlEvent::TouchUpOutside);
    EXPECT_EQ(log, (Log{"first", "second"}));  // once each, though "first" matches two events

    control->removeTargetForControlEvents(&first, ControlEvent::TouchUpInside);  // keeps its touch-down
    log.clear();
    control->sendActionsForControlEvents(ControlEvent::TouchUpInside);
    control->sendActionsForControlEvents(ControlEvent::TouchDown);
    EXPECT_EQ(log, (Log{"second", "first"}));

    control->removeTargetForControlEvents(nullptr, ControlEvent::AllEvents);
    EXPECT_EQ(control->allControlEvents(), 0u);
}

TEST_F(ControlTest, ActionsMayRemoveOthersOrReleaseTheControlDuringDispatch) {
    auto control = std::make_shared<Control>();
    std::weak_ptr<Control> watch = control;
    Log log;
    int removed = 0;
    control->addTargetActionForControlEvents(
        nullptr,
        [&](Control& sender) {
            sender.removeTargetForControlEvents(&removed, ControlEvent::AllEvents);
            control.reset();
        },
        ControlEvent::TouchDown);
    control->addTargetActionForControlEvents(
        &removed, [&](Control&) { log.push_back("removed"); }, ControlEvent::TouchDown);
    control->addTargetActionForControlEvents(
        nullptr, [&](Control& sender) { log.push_back(sender.className()); }, ControlEvent::TouchDown);
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

    for (uint32_t state : {ControlState::Normal, ControlState::Application, ControlState::Reserved}) {
        button->setTitleForState("Music 1", state);
    }
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

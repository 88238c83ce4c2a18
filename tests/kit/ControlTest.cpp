#include "kit/Button.h"
#include "kit/Control.h"
#include "kit/Image.h"

#include "tests/support/SimTest.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using kit::Button;
using kit::ButtonType;
using kit::Color;
using kit::Control;
namespace ControlEvent = kit::ControlEvent;
namespace ControlState = kit::ControlState;

namespace {

class ControlTest : public SimTest {};

std::shared_ptr<kit::Image> pixel() {
    return kit::Image::fromRgba({0, 0, 0, 255}, 1, 1);
}

}  // namespace

TEST_F(ControlTest, StateCombinesTheFlags) {
    auto control = std::make_shared<Control>();
    EXPECT_EQ(control->state(), ControlState::Normal);
    control->setHighlighted(true);
    control->setSelected(true);
    EXPECT_EQ(control->state(), ControlState::Highlighted | ControlState::Selected);
    control->setEnabled(false);
    control->setHighlighted(false);
    EXPECT_EQ(control->state(), ControlState::Disabled | ControlState::Selected);
}

TEST_F(ControlTest, ActionsRunForTheirEventsInTheOrderAdded) {
    auto control = std::make_shared<Control>();
    std::vector<std::string> log;
    int first = 0, second = 0;
    control->addTargetActionForControlEvents(
        &first, [&](Control& sender) { log.push_back(sender.tag() == 5 ? "first" : "?"); },
        ControlEvent::TouchDown | ControlEvent::TouchUpInside);
    control->addTargetActionForControlEvents(
        &second, [&](Control&) { log.push_back("second"); }, ControlEvent::TouchUpInside);
    control->addTargetActionForControlEvents(
        nullptr, [&](Control&) { log.push_back("anonymous"); }, ControlEvent::ValueChanged);
    control->setTag(5);
    EXPECT_EQ(control->allControlEvents(),
              ControlEvent::TouchDown | ControlEvent::TouchUpInside | ControlEvent::ValueChanged);

    control->sendActionsForControlEvents(ControlEvent::TouchDown);
    EXPECT_EQ(log, std::vector<std::string>{"first"});
    log.clear();
    // One action registered for several of the events sent still runs once.
    control->sendActionsForControlEvents(ControlEvent::TouchDown | ControlEvent::TouchUpInside);
    EXPECT_EQ(log, (std::vector<std::string>{"first", "second"}));
    log.clear();
    control->sendActionsForControlEvents(ControlEvent::TouchUpOutside);
    EXPECT_TRUE(log.empty());

    // Removal by target and event: the first keeps its other event.
    control->removeTargetForControlEvents(&first, ControlEvent::TouchUpInside);
    control->sendActionsForControlEvents(ControlEvent::TouchDown | ControlEvent::TouchUpInside);
    EXPECT_EQ(log, (std::vector<std::string>{"first", "second"}));
    log.clear();
    control->sendActionsForControlEvents(ControlEvent::TouchUpInside);
    EXPECT_EQ(log, std::vector<std::string>{"second"});
    log.clear();

    // No target: every target's registrations for those events.
    control->removeTargetForControlEvents(nullptr, ControlEvent::AllEvents);
    control->sendActionsForControlEvents(ControlEvent::AllEvents);
    EXPECT_TRUE(log.empty());
    EXPECT_EQ(control->allControlEvents(), 0u);
}

TEST_F(ControlTest, ActionRemovedDuringDispatchDoesNotRun) {
    auto control = std::make_shared<Control>();
    int remover = 0, removed = 0;
    std::vector<std::string> log;
    control->addTargetActionForControlEvents(
        &remover,
        [&](Control& sender) {
            log.push_back("remover");
            sender.removeTargetForControlEvents(&removed, ControlEvent::AllEvents);
        },
        ControlEvent::TouchDown);
    control->addTargetActionForControlEvents(
        &removed, [&](Control&) { log.push_back("removed"); }, ControlEvent::TouchDown);
    control->sendActionsForControlEvents(ControlEvent::TouchDown);
    EXPECT_EQ(log, std::vector<std::string>{"remover"});
}

TEST_F(ControlTest, ActionMayReleaseItsControl) {
    auto control = std::make_shared<Control>();
    std::weak_ptr<Control> watch = control;
    int after = 0;
    control->addTargetActionForControlEvents(
        nullptr, [&](Control&) { control.reset(); }, ControlEvent::TouchDown);
    control->addTargetActionForControlEvents(
        nullptr, [&](Control&) { ++after; }, ControlEvent::TouchDown);
    control->sendActionsForControlEvents(ControlEvent::TouchDown);  // alive until the dispatch ends
    EXPECT_EQ(after, 1);
    EXPECT_TRUE(watch.expired());
}

TEST_F(ControlTest, ButtonValuesPerStateFallBackToNormal) {
    auto button = Button::buttonWithType(ButtonType::Custom);
    // The same title for six states, the application's and kit's reserved ones included.
    for (uint32_t state : {ControlState::Normal, ControlState::Application, ControlState::Disabled,
                           ControlState::Highlighted, ControlState::Reserved, ControlState::Selected}) {
        button->setTitleForState("Music 1", state);
    }
    button->setTitleForState("Pressed", ControlState::Highlighted);
    EXPECT_EQ(button->titleForState(ControlState::Application), "Music 1");
    EXPECT_EQ(button->titleForState(ControlState::Reserved), "Music 1");
    EXPECT_EQ(button->currentTitle(), "Music 1");
    button->setHighlighted(true);
    EXPECT_EQ(button->currentTitle(), "Pressed");
    button->setTitleForState(std::nullopt, ControlState::Highlighted);
    EXPECT_EQ(button->currentTitle(), "Music 1");

    // A state with no value of its own shows the normal one.
    auto plain = std::make_shared<Button>();
    EXPECT_EQ(plain->currentTitle(), std::nullopt);
    plain->setTitleForState("Go", ControlState::Normal);
    plain->setEnabled(false);
    EXPECT_EQ(plain->currentTitle(), "Go");
    plain->setTitleForState("", ControlState::Disabled);  // empty is a value, not "unset"
    EXPECT_EQ(plain->currentTitle(), "");

    auto image = pixel();
    plain->setImageForState(image, ControlState::Normal);
    EXPECT_EQ(plain->imageForState(ControlState::Selected), image);
    plain->setImageForState(nullptr, ControlState::Normal);
    EXPECT_EQ(plain->currentImage(), nullptr);
}

TEST_F(ControlTest, TitleColourFollowsStateWithADefaultByButtonType) {
    auto custom = Button::buttonWithType(ButtonType::Custom);
    auto rounded = Button::buttonWithType(ButtonType::RoundedRect);
    EXPECT_EQ(custom->currentTitleColor(), Color::white());
    EXPECT_NE(rounded->currentTitleColor(), Color::white());
    EXPECT_EQ(rounded->buttonType(), ButtonType::RoundedRect);

    const Color red{1, 0, 0, 1};
    custom->setTitleColorForState(Color::black(), ControlState::Normal);
    custom->setTitleColorForState(red, ControlState::Highlighted | ControlState::Selected);
    custom->setHighlighted(true);
    EXPECT_EQ(custom->currentTitleColor(), Color::black());
    custom->setSelected(true);
    EXPECT_EQ(custom->currentTitleColor(), red);
}

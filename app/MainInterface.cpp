#include "app/MainInterface.h"

#include "app/ViewController.h"
#include "kit/ClassRegistry.h"
#include "kit/Screen.h"
#include "kit/Window.h"

namespace {
const bool registered = kit::ClassRegistry::add<MainInterface>(kit::InterfaceFile::kMainInterfaceName);

constexpr size_t kColumns = 4;
constexpr size_t kRows = 4;
}  // namespace

std::shared_ptr<kit::Window> MainInterface::instantiateWindow() {
    auto window = std::make_shared<kit::Window>(kit::Screen::main().bounds());
    window->setBackgroundColor({0.13, 0.16, 0.24, 1.0});
    window->setRootViewController(std::make_shared<ViewController>());
    return window;
}

std::shared_ptr<kit::View> MainInterface::loadSoundboardView(ViewController& controller) {
    kit::Rect screen = kit::Screen::main().bounds();
    auto view = std::make_shared<kit::View>(screen);
    view->setAutoresizingMask(kit::Autoresizing::FlexibleWidth | kit::Autoresizing::FlexibleHeight);
    view->setBackgroundColor({0.13, 0.16, 0.24, 1.0});

    // The grid fills the screen above the banner's slot, with even gaps all round.
    kit::Rect banner = ViewController::bannerSlotForDevice(kit::Device::current()).frame;
    double gap = screen.width() >= 1024 ? 16 : 8;
    double width = (screen.width() - gap * (kColumns + 1)) / kColumns;
    double height = (banner.minY() - gap * (kRows + 1)) / kRows;
    for (size_t i = 0; i < ViewController::kButtonCount; ++i) {
        double x = gap + static_cast<double>(i % kColumns) * (width + gap);
        double y = gap + static_cast<double>(i / kColumns) * (height + gap);
        auto button =
            std::make_shared<SoundButton>(kit::Rect{x, y, width, height}, SoundButton::FromInterface{});
        view->addSubview(button);
        controller.setSoundButton(i, button);
    }
    for (size_t i = 0; i < ViewController::kButtonCount; ++i) controller.soundButton(i)->awakeFromNib();
    return view;
}

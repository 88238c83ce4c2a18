#pragma once

#include "kit/InterfaceFile.h"
#include "kit/View.h"

#include <memory>

class ViewController;

// The soundboard's interface file: the window with its root controller, and the controller's
// view with sixteen sound buttons in a grid above the banner's slot.
class MainInterface : public kit::InterfaceFile {
public:
    std::shared_ptr<kit::Window> instantiateWindow() override;

    // Builds the controller's view and connects its button outlets.
    static std::shared_ptr<kit::View> loadSoundboardView(ViewController& controller);
};

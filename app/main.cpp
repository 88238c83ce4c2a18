#include "app/AppDelegate.h"
#include "kit/ApplicationMain.h"

int main(int argc, char** argv) {
    // The delegate is made by class name, as the application loop looks it up.
    return kit::applicationMain(argc, argv, kit::nameOfClass<AppDelegate>().c_str());
}

#pragma once

namespace kit {

// Runs an application on the port it is linked with: installs the platform, loads the main
// interface (the InterfaceFile registered as InterfaceFile::kMainInterfaceName), makes the
// application delegate of the class registered as `delegateClassName`, gives it the window,
// launches, shows the window and runs the loop until it quits. Returns the exit status.
//
// Options:
//   --tablet           the tablet idiom (a 1024×768 screen) instead of the handset's (480×320)
//   --screenshot FILE  after start-up, write the screen to FILE as PNG and quit
//   --tap-controls     touch every control on the screen once, a quarter of a second apart, let
//                      the sounds end, then quit (after the screenshot, when one is asked for)
int applicationMain(int argc, char** argv, const char* delegateClassName);

}  // namespace kit

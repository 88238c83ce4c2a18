#include "kit/ApplicationMain.h"

#include "kit/Application.h"
#include "kit/ClassRegistry.h"
#include "kit/Control.h"
#include "kit/InterfaceFile.h"
#include "kit/Log.h"
#include "kit/RunLoop.h"
#include "kit/Window.h"
#include "kit/port/PortKey.h"
#include "kit/qt/QtPlatform.h"
#include "kit/qt/QtWebPage.h"
#include "kit/qt/QtWindowPeer.h"

#include <QApplication>

#include <string>
#include <vector>

namespace kit {

namespace {

struct Options {
    bool tablet = false;
    std::string screenshot;
    bool tapControls = false;
};

Options parse(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        if (arg == "--tablet") options.tablet = true;
        if (arg == "--tap-controls") options.tapControls = true;
        if (arg == "--screenshot" && i + 1 < argc) options.screenshot = argv[++i];
    }
    return options;
}

void collectControls(const std::shared_ptr<View>& view, std::vector<std::shared_ptr<Control>>& out) {
    if (auto control = std::dynamic_pointer_cast<Control>(view)) out.push_back(control);
    for (const auto& subview : view->subviews()) collectControls(subview, out);
}

bool saveScreenshot(Window& window, const std::string& file) {
    auto* peer = dynamic_cast<qt::QtWindowPeer*>(window.peer(PortKey{}));
    if (!peer || !peer->grab().save(QString::fromStdString(file), "PNG")) {
        Log::format("Could not write the screenshot {}", file);
        return false;
    }
    return true;
}

// Touches each control in the middle, one after another, then ends the session.
void tapControls(const std::shared_ptr<Window>& window, std::function<void()> done) {
    std::vector<std::shared_ptr<Control>> controls;
    collectControls(window, controls);
    constexpr double kGap = 0.25;
    constexpr double kLastSoundEnds = 2.5;
    double at = 0.5;
    for (const auto& control : controls) {
        std::weak_ptr<Control> weak = control;
        std::weak_ptr<Window> weakWindow = window;
        RunLoop::main().postAfter(at, [weak, weakWindow] {
            auto c = weak.lock();
            auto w = weakWindow.lock();
            if (!c || !w) return;
            Rect b = c->bounds();
            Point centre =
                c->convertPointToView({b.minX() + b.width() / 2, b.minY() + b.height() / 2}, w.get());
            w->touchDown(PortKey{}, centre);
            w->touchUp(PortKey{}, centre);
        });
        at += kGap;
    }
    RunLoop::main().postAfter(at + kLastSoundEnds, std::move(done));
}

}  // namespace

int applicationMain(int argc, char** argv, const char* delegateClassName) {
    qt::QtWebPage::prepareEngine();
    QApplication qtApplication(argc, argv);
    Options options = parse(argc, argv);
    Platform::install(std::make_unique<qt::QtPlatform>(options.tablet ? UserInterfaceIdiom::Pad
                                                                      : UserInterfaceIdiom::Phone));
    int status = 0;
    {
        Application& application = Application::shared();
        auto delegate = ClassRegistry::create<ApplicationDelegate>(delegateClassName);
        if (!delegate) {
            Log::format("No application delegate class named {}", delegateClassName);
            Platform::uninstall();
            return 1;
        }
        std::shared_ptr<Window> window;
        if (auto interface = ClassRegistry::create<InterfaceFile>(InterfaceFile::kMainInterfaceName)) {
            window = interface->instantiateWindow();
            delegate->setWindow(window);
        }
        application.setDelegate(delegate);
        application.finishLaunching(PortKey{});
        if (window) window->makeKeyAndVisible();

        bool scripted = options.tapControls || !options.screenshot.empty();
        if (scripted && window) {
            auto finish = [window, options] {
                bool ok = options.screenshot.empty() || saveScreenshot(*window, options.screenshot);
                RunLoop::main().quit(ok ? 0 : 1);
            };
            if (options.tapControls) {
                tapControls(window, finish);
            } else {
                RunLoop::main().postAfter(0.3, finish);  // after the first layout and paint
            }
        }
        status = RunLoop::main().run();
        application.terminate(PortKey{});
    }
    Platform::uninstall();
    return status;
}

}  // namespace kit

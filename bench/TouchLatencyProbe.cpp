// Touch-to-sound latency of the soundboard on the real port: from the dispatch of a touch on a
// sound button to the first audio callback whose mix carries the clip's first sample. Prints the
// median and the 95th percentile over many touches.
//
// The audio device is the machine's own; where there is none, SDL's dummy driver paces the
// callbacks as a device would. The floor is one buffer: 256 frames at 44.1 kHz, 5.8 ms.
#include "app/ViewController.h"
#include "bench/Percentile.h"
#include "kit/ClassRegistry.h"
#include "kit/InterfaceFile.h"
#include "kit/RunLoop.h"
#include "kit/Window.h"
#include "kit/port/PortKey.h"
#include "kit/qt/QtPlatform.h"

#include <QApplication>

#include <SDL_mixer.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

std::atomic<bool> armed{false};
std::atomic<Clock::rep> heardAt{0};

// Runs on the audio thread after each mix.
void afterMix(void*, Uint8* stream, int length) {
    if (!armed.load(std::memory_order_acquire)) return;
    const auto* samples = reinterpret_cast<const int16_t*>(stream);
    for (int i = 0; i < length / 2; ++i) {
        if (samples[i] != 0) {
            heardAt.store(Clock::now().time_since_epoch().count(), std::memory_order_release);
            armed.store(false, std::memory_order_release);
            return;
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    constexpr int kTouches = 120;
    if (!std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY")) setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QApplication qt(argc, argv);
    kit::Platform::install(std::make_unique<kit::qt::QtPlatform>(kit::UserInterfaceIdiom::Phone));
    auto& sound = static_cast<kit::qt::SdlSoundService&>(kit::SoundService::shared());
    if (!sound.isOpen()) {
        // No audio device here: let the dummy driver pace the callbacks instead.
        kit::Platform::uninstall();
        setenv("SDL_AUDIODRIVER", "dummy", 1);
        kit::Platform::install(std::make_unique<kit::qt::QtPlatform>(kit::UserInterfaceIdiom::Phone));
    }
    std::printf("audio driver: %s\n", SDL_GetCurrentAudioDriver());

    std::vector<double> latencies;
    {
        auto window = kit::ClassRegistry::create<kit::InterfaceFile>(kit::InterfaceFile::kMainInterfaceName)
                          ->instantiateWindow();
        window->makeKeyAndVisible();
        auto button = std::dynamic_pointer_cast<ViewController>(window->rootViewController())->soundButton(0);
        kit::Rect b = button->bounds();
        kit::Point centre = button->convertPointToView({b.width() / 2, b.height() / 2}, nullptr);
        Mix_SetPostMix(afterMix, nullptr);

        std::function<void(int)> touch = [&](int remaining) {
            if (remaining == 0) {
                kit::RunLoop::main().quit(0);
                return;
            }
            Mix_HaltChannel(-1);  // silence, so the next clip's first sample is the first non-zero one
            kit::RunLoop::main().postAfter(0.03, [&, remaining] {
                heardAt = 0;
                armed = true;
                auto touchedAt = Clock::now();
                window->touchDown(kit::PortKey{}, centre);
                window->touchUp(kit::PortKey{}, centre);
                kit::RunLoop::main().postAfter(0.1, [&, remaining, touchedAt] {
                    if (!armed.load() && heardAt.load() != 0) {
                        auto heard = Clock::time_point(Clock::duration(heardAt.load()));
                        latencies.push_back(
                            std::chrono::duration<double, std::milli>(heard - touchedAt).count());
                    }
                    armed = false;
                    heardAt = 0;
                    touch(remaining - 1);
                });
            });
        };
        touch(kTouches);
        kit::RunLoop::main().run();
        Mix_SetPostMix(nullptr, nullptr);
    }
    kit::Platform::uninstall();

    if (latencies.empty()) {
        std::printf("no touch was heard\n");
        return 1;
    }
    std::printf("touches heard: %zu of %d\n", latencies.size(), kTouches);
    std::printf("touch-to-sound latency: median %.2f ms, 95th percentile %.2f ms (min %.2f, max %.2f)\n",
                bench::percentile(latencies, 0.5), bench::percentile(latencies, 0.95),
                *std::min_element(latencies.begin(), latencies.end()),
                *std::max_element(latencies.begin(), latencies.end()));
    std::printf("floor: one buffer of 256 frames at 44.1 kHz = 5.80 ms\n");
    return 0;
}

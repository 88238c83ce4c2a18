// The real soundboard on the Qt port, offscreen, with sound going through SDL's disk driver.
#include "app/ViewController.h"
#include "kit/ClassRegistry.h"
#include "kit/InterfaceFile.h"
#include "kit/RunLoop.h"
#include "kit/Window.h"
#include "kit/port/PortKey.h"
#include "kit/qt/QtPlatform.h"
#include "tests/integration/support/QtTestApplication.h"

#include <QApplication>
#include <QColor>
#include <QImage>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <vector>

namespace fs = std::filesystem;

namespace {

fs::path scratch(const std::string& name) {
    return fs::temp_directory_path() / ("quiblo-it-" + name);
}

std::vector<int16_t> readSamples(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::vector<int16_t> samples(bytes.size() / 2);
    std::memcpy(samples.data(), bytes.data(), samples.size() * 2);
    return samples;
}

double energy(const std::vector<int16_t>& samples) {
    double sum = 0;
    for (int16_t s : samples) sum += double(s) * double(s);
    return sum;
}

// Runs the soundboard in this process, touching button `index` at each of `times` (seconds after
// start), until `seconds` have passed; returns what the audio device played.
std::vector<int16_t> playSession(size_t index, std::vector<double> times, double seconds,
                                 const std::string& name) {
    fs::path audio = scratch(name + ".raw");
    fs::remove(audio);
    setenv("SDL_AUDIODRIVER", "disk", 1);
    setenv("SDL_DISKAUDIOFILE", audio.c_str(), 1);
    kit::Platform::install(std::make_unique<kit::qt::QtPlatform>(kit::UserInterfaceIdiom::Phone));
    {
        auto window = kit::ClassRegistry::create<kit::InterfaceFile>(kit::InterfaceFile::kMainInterfaceName)
                          ->instantiateWindow();
        window->makeKeyAndVisible();
        auto controller = std::dynamic_pointer_cast<ViewController>(window->rootViewController());
        auto button = controller->soundButton(index);
        kit::Rect b = button->bounds();
        kit::Point centre = button->convertPointToView({b.width() / 2, b.height() / 2}, nullptr);
        for (double t : times)
            kit::RunLoop::main().postAfter(t, [window, centre] {
                window->touchDown(kit::PortKey{}, centre);
                window->touchUp(kit::PortKey{}, centre);
            });
        kit::RunLoop::main().postAfter(seconds, [] { kit::RunLoop::main().quit(0); });
        kit::RunLoop::main().run();
    }
    kit::Platform::uninstall();
    return readSamples(audio);
}

}  // namespace

class SoundboardQtTest : public qttest::QtApplicationTest {};

TEST_F(SoundboardQtTest, ScreenshotShowsSixteenButtonsAboveAnEmptyBannerSlot) {
    fs::path shot = scratch("screen.png");
    fs::remove(shot);
    std::string command = "cd '" +
                          fs::path(QApplication::applicationDirPath().toStdString()).parent_path().string() +
                          "/app' && SDL_AUDIODRIVER=dummy QT_QPA_PLATFORM=offscreen ./quiblo --screenshot '" +
                          shot.string() + "' 2>/dev/null";
    ASSERT_EQ(std::system(command.c_str()), 0);
    QImage image(QString::fromStdString(shot.string()));
    ASSERT_FALSE(image.isNull());
    ASSERT_EQ(image.width(), 480);
    ASSERT_EQ(image.height(), 320);
    QColor background = image.pixelColor(240, 290);  // the banner slot: nothing there yet
    int buttons = 0;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            // Near each cell's top-left corner, inside the button, away from its title.
            QColor c = image.pixelColor(8 + column * 118 + 10, 8 + row * 62 + 6);
            if (c.lightness() > background.lightness() + 60) ++buttons;
        }
    }
    EXPECT_EQ(buttons, 16);
    // Each title is drawn: dark pixels in the middle of every button.
    for (int i = 0; i < 16; ++i) {
        int cx = 8 + (i % 4) * 118 + 55, cy = 8 + (i / 4) * 62 + 27;
        int dark = 0;
        for (int x = cx - 40; x < cx + 40; ++x) dark += image.pixelColor(x, cy).lightness() < 90;
        EXPECT_GT(dark, 2) << "no title on button " << i + 1;
    }
}

TEST_F(SoundboardQtTest, ATouchIsHeardAndTwoQuickTouchesOverlap) {
    auto once = playSession(14, {0.3}, 2.5, "once");
    auto twice = playSession(14, {0.3, 0.4}, 2.6, "twice");
    double one = energy(once), two = energy(twice);
    ASSERT_GT(once.size(), 44100u) << "the disk driver wrote the session";
    EXPECT_GT(one, 1e12) << "the touch was heard";
    // Played over each other the two plays add up; had the second cut the first short, the
    // energy would grow by a few percent only.
    EXPECT_GT(two / one, 1.6);
}

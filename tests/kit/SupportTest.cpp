// The small services: class lookup by name, the log, and the simulated sound service.
#include "kit/ClassRegistry.h"
#include "kit/FileManager.h"
#include "kit/Log.h"
#include "kit/SoundService.h"
#include "tests/support/SimTest.h"

namespace {
class Greeter : public kit::Object {};
const bool greeterRegistered = kit::ClassRegistry::add<Greeter>("Greeter");
}  // namespace

TEST(ClassRegistry, MakesANewInstanceByNameOfTheAskedTypeUntilRemoved) {
    ASSERT_TRUE(greeterRegistered);
    auto made = kit::ClassRegistry::create<Greeter>("Greeter");
    ASSERT_TRUE(made);
    EXPECT_NE(made, kit::ClassRegistry::create<Greeter>("Greeter"));
    EXPECT_EQ(kit::ClassRegistry::create<kit::Error>("Greeter"), nullptr) << "not of the asked type";
    EXPECT_FALSE(kit::ClassRegistry::contains("NoSuchClass") || kit::ClassRegistry::create("NoSuchClass"));
    kit::ClassRegistry::add("Temporary", [] { return std::make_shared<Greeter>(); });
    EXPECT_TRUE(kit::ClassRegistry::contains("Temporary"));
    kit::ClassRegistry::remove("Temporary");
    EXPECT_FALSE(kit::ClassRegistry::create("Temporary"));
}

TEST(Log, CapturesLinesWhileACaptureIsAlive) {
    kit::Log::Capture outer;
    kit::Log::write("one");
    {
        kit::Log::Capture inner;
        kit::Log::format("<Vantor> {}:  {}", "two", 2);
        EXPECT_EQ(inner.lines(), (std::vector<std::string>{"<Vantor> two:  2"}));
    }
    kit::Log::write("three");
    EXPECT_EQ(outer.lines(), (std::vector<std::string>{"one", "three"}));
    EXPECT_TRUE(outer.contains("thr"));
}

// Registering, overlapping plays and missing clips are the soundboard's tests.
class SoundServiceTest : public SimTest {};

TEST_F(SoundServiceTest, VibrationIsNoAudiblePlayAndADisposedClipIsSilent) {
    auto& files = kit::FileManager::defaultManager();
    auto clip = files.resourcesFolder() / "Sound1.mp3";
    ASSERT_TRUE(files.writeAtomically(clip, "ID3 not really audio"));
    auto& sound = kit::SoundService::shared();
    auto ok = sound.registerClip(clip.string());
    EXPECT_EQ(ok.status, 0);
    EXPECT_NE(sound.registerClip((files.resourcesFolder() / "Sound2.mp3").string()).status, 0);
    sound.play(ok.id);
    sound.play(kit::SoundService::kVibrate);
    EXPECT_EQ(sim().sounds().vibrations(), 1u);
    EXPECT_EQ(sim().sounds().audiblePlays().size(), 1u);
    sound.dispose(ok.id);
    sound.play(ok.id);
    EXPECT_EQ(sim().sounds().audiblePlays().size(), 1u);
}

// The small services: class lookup by name, the log, and the simulated sound service.
#include "kit/ClassRegistry.h"
#include "kit/FileManager.h"
#include "kit/Log.h"
#include "kit/SoundService.h"
#include "tests/support/SimTest.h"

namespace {
class Greeter : public kit::Object {
public:
    virtual std::string hello() const { return "hello"; }
};
const bool greeterRegistered = kit::ClassRegistry::add<Greeter>("Greeter");
}  // namespace

TEST(ClassRegistry, MakesInstancesByName) {
    ASSERT_TRUE(greeterRegistered);
    EXPECT_TRUE(kit::ClassRegistry::contains("Greeter"));
    auto made = kit::ClassRegistry::create<Greeter>("Greeter");
    ASSERT_TRUE(made);
    EXPECT_EQ(made->hello(), "hello");
    EXPECT_NE(made, kit::ClassRegistry::create<Greeter>("Greeter")) << "a new instance each time";
    EXPECT_EQ(kit::ClassRegistry::create("NoSuchClass"), nullptr);
    EXPECT_FALSE(kit::ClassRegistry::contains("NoSuchClass"));
    EXPECT_EQ(kit::ClassRegistry::create<kit::Error>("Greeter"), nullptr) << "not of the asked type";
}

TEST(ClassRegistry, RemovedClassesAreGone) {
    kit::ClassRegistry::add("Temporary", [] { return std::make_shared<Greeter>(); });
    EXPECT_TRUE(kit::ClassRegistry::create("Temporary"));
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

class SoundServiceTest : public SimTest {};

TEST_F(SoundServiceTest, RegisteredClipsPlayOverlappingAndMissingOnesNot) {
    auto& files = kit::FileManager::defaultManager();
    auto clip = files.resourcesFolder() / "Sound1.mp3";
    ASSERT_TRUE(files.writeAtomically(clip, "ID3 not really audio"));
    auto& sound = kit::SoundService::shared();
    auto ok = sound.registerClip(clip.string());
    auto missing = sound.registerClip((files.resourcesFolder() / "Sound2.mp3").string());
    EXPECT_EQ(ok.status, 0);
    EXPECT_NE(ok.id, 0u);
    EXPECT_NE(missing.status, 0);
    EXPECT_EQ(missing.id, 0u);

    sound.play(ok.id);
    advance(0.1);
    sound.play(ok.id);
    sound.play(missing.id);
    sound.play(kit::SoundService::kVibrate);
    auto& recorded = sim().sounds();
    ASSERT_EQ(recorded.audiblePlays().size(), 2u);
    EXPECT_NEAR(recorded.audiblePlays()[1].time - recorded.audiblePlays()[0].time, 0.1, 1e-9);
    EXPECT_EQ(recorded.vibrations(), 1u);
    sound.dispose(ok.id);
    sound.play(ok.id);
    EXPECT_EQ(recorded.audiblePlays().size(), 2u);
}

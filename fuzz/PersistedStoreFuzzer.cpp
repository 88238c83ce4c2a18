// Loads arbitrary persisted statistics and timings: as a settings file, and as JSON values placed
// where the stores live. Whatever was stored, the keeper builds its parameters and saves again.
#include "ads/Statistics/ZEBStatistics.h"
#include "ads/ThirdParty/ZEBJSON.h"
#include "kit/PropertyList.h"
#include "kit/UserDefaults.h"
#include "kit/sim/SimPlatform.h"

#include <cstdlib>
#include <fstream>
#include <string_view>

namespace {
void check(bool condition) {
    if (!condition) std::abort();
}

// The settings file's own framing, so that the bytes reach the value reader.
std::string settingsFile(std::string_view body) {
    std::string file = "QBDEFS1\n";
    file.append(body);
    uint32_t h = 2166136261u;
    for (unsigned char c : file) h = (h ^ c) * 16777619u;
    file.append(reinterpret_cast<const char*>(&h), sizeof h);
    return file;
}

void exercise() {
    ZEBStatistics& stats = ZEBStatistics::sharedStatistics();
    stats.incrementClickCount();
    stats.parameters();
    stats.urlForClick(*kit::Url::parse("http://h/c?ai=x"));
    stats.parameters();
    stats.synchronize();
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    std::string_view bytes(reinterpret_cast<const char*>(data + 1), size - 1);
    auto& sim = kit::sim::SimPlatform::install();
    switch (data[0] % 3) {
        case 0: {
            auto file = sim.folder() / "settings.bin";
            std::ofstream(file, std::ios::binary) << settingsFile(bytes);
            sim.userDefaults() = kit::UserDefaults(file);
            break;
        }
        case 1: {
            ZEBJSON json;
            if (auto value = json.fragmentWithStringError(bytes)) {
                sim.userDefaults().set("vantor_stats_shared", *value);
                sim.userDefaults().set("vantor_timing_shared", *value);
            }
            break;
        }
        default:
            // The store metadata file is read the same way as any property list.
            kit::PropertyList::read(bytes);
            break;
    }
    exercise();
    // What was saved loads again to the same stores.
    kit::Value saved = *sim.userDefaults().find("vantor_stats_shared");
    ZEBStatisticsCore reloaded("shared");
    check(kit::Value(reloaded.statistics()) == saved);
    kit::Platform::uninstall();
    return 0;
}

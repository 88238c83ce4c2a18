#include "ads/Timing/ZEBTimingManager.h"

#include "kit/Application.h"
#include "kit/UserDefaults.h"

#include <algorithm>

ZEBTimingManager::ZEBTimingManager(std::string identifier) : identifier_(std::move(identifier)) {
    loadPersistentTimings();
    willTerminate_ = kit::NotificationCenter::defaultCenter().addObserver(
        kit::Application::kWillTerminateNotification, nullptr,
        [this](const kit::Notification&) { savePersistentTimings(); });
}

ZEBTimingManager::~ZEBTimingManager() = default;

std::string ZEBTimingManager::userDefaultsKey() const {
    return "vantor_timing_" + identifier_;
}

std::vector<std::string> ZEBTimingManager::categories() const {
    std::vector<std::string> names;
    for (const auto& [category, timing] : timings_) names.push_back(category);
    return names;
}

std::vector<std::shared_ptr<ZEBTiming>> ZEBTimingManager::timings() const {
    std::vector<std::shared_ptr<ZEBTiming>> all;
    for (const auto& [category, timing] : timings_) all.push_back(timing);
    return all;
}

std::shared_ptr<ZEBTiming> ZEBTimingManager::timingForCategory(std::string_view category) const {
    for (const auto& [name, timing] : timings_) {
        if (name == category) return timing;
    }
    return nullptr;
}

void ZEBTimingManager::addTiming(std::shared_ptr<ZEBTiming> timing) {
    if (!timing) return;
    std::string category = timing->category();
    put(std::move(category), std::move(timing));
}

void ZEBTimingManager::put(std::string category, std::shared_ptr<ZEBTiming> timing) {
    for (auto& [name, existing] : timings_) {
        if (name == category) {
            existing = std::move(timing);
            return;
        }
    }
    timings_.emplace_back(std::move(category), std::move(timing));
}

std::shared_ptr<ZEBTiming> ZEBTimingManager::addTimingWithCategory(std::string category) {
    auto timing = std::make_shared<ZEBTiming>(std::move(category));
    addTiming(timing);
    return timing;
}

void ZEBTimingManager::removeTiming(const std::shared_ptr<ZEBTiming>& timing) {
    if (timing) removeTimingForCategory(timing->category());
}

void ZEBTimingManager::removeTimingForCategory(std::string_view category) {
    std::erase_if(timings_, [&](const auto& entry) { return entry.first == category; });
}

void ZEBTimingManager::removeTimingsForCategories(const std::vector<std::string>& categories) {
    for (const std::string& category : categories) removeTimingForCategory(category);
}

void ZEBTimingManager::removeAllTimings() {
    timings_.clear();
}

void ZEBTimingManager::loadPersistentTimings() {
    const kit::Value::Map* stored = kit::UserDefaults::standard().map(userDefaultsKey());
    if (!stored) return;
    for (const auto& [category, representation] : *stored) {
        // A stored entry that is not a timing's map is skipped; the others still load.
        const kit::Value::Map* map = representation.map();
        if (!map) continue;
        // Kept under the stored key, whatever category the timing itself names.
        put(category, ZEBTiming::createWithDictionaryRepresentation(*map));
    }
}

void ZEBTimingManager::savePersistentTimings() {
    kit::Value::Map stored;
    for (const auto& [category, timing] : timings_) stored.set(category, timing->dictionaryRepresentation());
    kit::UserDefaults::standard().set(userDefaultsKey(), std::move(stored));
    kit::UserDefaults::standard().synchronize();
}

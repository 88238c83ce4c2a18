#pragma once

#include "ads/Timing/ZEBTiming.h"
#include "kit/NotificationCenter.h"

#include <memory>
#include <string>
#include <vector>

// The timings of one store, by category. Loaded from the settings at creation, saved there when
// the application terminates and on synchronize().
class ZEBTimingManager : public kit::Object {
public:
    explicit ZEBTimingManager(std::string identifier);
    ~ZEBTimingManager() override;

    const std::string& identifier() const { return identifier_; }
    // "vantor_timing_" and the identifier.
    std::string userDefaultsKey() const;
    std::vector<std::string> categories() const;
    std::vector<std::shared_ptr<ZEBTiming>> timings() const;
    std::shared_ptr<ZEBTiming> timingForCategory(std::string_view category) const;

    // Replaces a timing of the same category; null is ignored.
    void addTiming(std::shared_ptr<ZEBTiming> timing);
    std::shared_ptr<ZEBTiming> addTimingWithCategory(std::string category);
    void removeTiming(const std::shared_ptr<ZEBTiming>& timing);
    void removeTimingForCategory(std::string_view category);
    void removeTimingsForCategories(const std::vector<std::string>& categories);
    void removeAllTimings();

    void loadPersistentTimings();
    void savePersistentTimings();
    void synchronize() { savePersistentTimings(); }

private:
    void put(std::string category, std::shared_ptr<ZEBTiming> timing);

    std::string identifier_;
    kit::NotificationCenter::Subscription willTerminate_;
    // In the order added, so that saving writes a stable store.
    std::vector<std::pair<std::string, std::shared_ptr<ZEBTiming>>> timings_;
};

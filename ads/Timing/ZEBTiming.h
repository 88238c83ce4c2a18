#pragma once

#include "kit/Object.h"
#include "kit/Value.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

// A named stopwatch on the monotonic clock that can carry a few values with it. Idle (start 0),
// running (start set, end 0) or ended (both set).
class ZEBTiming : public kit::Object {
public:
    explicit ZEBTiming(std::string category);
    // From the stored form: "category", "start", "end" and, when present, "userData".
    static std::shared_ptr<ZEBTiming> createWithDictionaryRepresentation(
        const kit::Value::Map& representation);

    kit::Value::Map dictionaryRepresentation() const;
    // The monotonic clock in seconds.
    static double counter();

    void start();
    // Only a started timing ends; ending again moves the end.
    void end();
    void reset();
    bool isActive() const;
    // Up to the end, or up to now while running; 0 for a timing never started.
    uint32_t elapsedMilliseconds() const;
    std::string elapsedMillisecondsString() const;

    void setValueForKey(kit::Value value, std::string key);
    const kit::Value* valueForKey(std::string_view key) const;
    void removeValueForKey(std::string_view key);
    // A copy of the values; empty when there are none.
    kit::Value::Map keysAndValues() const;

    std::shared_ptr<ZEBTiming> copy() const;

    const std::string& category() const { return category_; }
    double startSeconds() const { return startSeconds_; }
    double endSeconds() const { return endSeconds_; }
    std::string description() const override;

private:
    std::string category_;
    double startSeconds_ = 0;
    double endSeconds_ = 0;
    std::optional<kit::Value::Map> userData_;
};

#pragma once

#include "kit/Value.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// A persistent key/value store of statistics, kept whole under "vantor_stats_<identifier>" in the
// settings. Typed setters ignore values of another type.
class ZEBStatisticsCore {
public:
    explicit ZEBStatisticsCore(std::string identifier);

    const std::string& identifier() const { return identifier_; }
    std::string userDefaultsKey() const;
    const kit::Value::Map& statistics() const { return statistics_; }

    void loadPersistentStatistics();
    void savePersistentStatistics();
    void synchronize() { savePersistentStatistics(); }

    void setStringForKey(const kit::Value& value, std::string key);
    void setNumberForKey(const kit::Value& value, std::string key);
    void setDateForKey(const kit::Value& value, std::string key);
    void setArrayForKey(const kit::Value& value, std::string key);
    void setDictionaryForKey(const kit::Value& value, std::string key);
    // Stores `value` only when its type is `type` (any number type for a number).
    void setObjectForKeyMatchingClass(const kit::Value& value, std::string key, kit::Value::Type type);

    // None (or null) when missing or of another type.
    std::optional<std::string> stringForKey(std::string_view key) const;
    std::optional<double> numberForKey(std::string_view key) const;
    std::optional<kit::Value::Date> dateForKey(std::string_view key) const;
    const kit::Value::Array* arrayForKey(std::string_view key) const;
    const kit::Value::Map* dictionaryForKey(std::string_view key) const;

    // Integer add; a missing (or non-number) value counts as 0. Returns the new value.
    int64_t addValueNumberForKey(int64_t value, std::string key);
    void removeObjectForKey(std::string_view key);
    void removeAllObjects();

private:
    std::string identifier_;
    kit::Value::Map statistics_;
};

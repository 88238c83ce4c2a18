#include "ads/Statistics/ZEBStatisticsCore.h"

#include "kit/UserDefaults.h"

#include <limits>

ZEBStatisticsCore::ZEBStatisticsCore(std::string identifier) : identifier_(std::move(identifier)) {
    loadPersistentStatistics();
}

std::string ZEBStatisticsCore::userDefaultsKey() const {
    return "vantor_stats_" + identifier_;
}

void ZEBStatisticsCore::loadPersistentStatistics() {
    const kit::Value::Map* stored = kit::UserDefaults::standard().map(userDefaultsKey());
    if (!stored) return;
    for (const auto& [key, value] : *stored) statistics_.set(key, value);
}

void ZEBStatisticsCore::savePersistentStatistics() {
    kit::UserDefaults::standard().set(userDefaultsKey(), statistics_);
    kit::UserDefaults::standard().synchronize();
}

void ZEBStatisticsCore::setObjectForKeyMatchingClass(const kit::Value& value, std::string key,
                                                     kit::Value::Type type) {
    bool matches = type == kit::Value::Type::Real ? value.isNumber() : value.type() == type;
    if (matches) statistics_.set(std::move(key), value);
}

void ZEBStatisticsCore::setStringForKey(const kit::Value& value, std::string key) {
    setObjectForKeyMatchingClass(value, std::move(key), kit::Value::Type::String);
}

void ZEBStatisticsCore::setNumberForKey(const kit::Value& value, std::string key) {
    setObjectForKeyMatchingClass(value, std::move(key), kit::Value::Type::Real);
}

void ZEBStatisticsCore::setDateForKey(const kit::Value& value, std::string key) {
    setObjectForKeyMatchingClass(value, std::move(key), kit::Value::Type::Date);
}

void ZEBStatisticsCore::setArrayForKey(const kit::Value& value, std::string key) {
    setObjectForKeyMatchingClass(value, std::move(key), kit::Value::Type::Array);
}

void ZEBStatisticsCore::setDictionaryForKey(const kit::Value& value, std::string key) {
    setObjectForKeyMatchingClass(value, std::move(key), kit::Value::Type::Map);
}

std::optional<std::string> ZEBStatisticsCore::stringForKey(std::string_view key) const {
    const kit::Value* value = statistics_.find(key);
    if (!value || !value->string()) return std::nullopt;
    return *value->string();
}

std::optional<double> ZEBStatisticsCore::numberForKey(std::string_view key) const {
    const kit::Value* value = statistics_.find(key);
    return value ? value->number() : std::nullopt;
}

std::optional<kit::Value::Date> ZEBStatisticsCore::dateForKey(std::string_view key) const {
    const kit::Value* value = statistics_.find(key);
    return value ? value->date() : std::nullopt;
}

const kit::Value::Array* ZEBStatisticsCore::arrayForKey(std::string_view key) const {
    const kit::Value* value = statistics_.find(key);
    return value ? value->array() : nullptr;
}

const kit::Value::Map* ZEBStatisticsCore::dictionaryForKey(std::string_view key) const {
    const kit::Value* value = statistics_.find(key);
    return value ? value->map() : nullptr;
}

int64_t ZEBStatisticsCore::addValueNumberForKey(int64_t value, std::string key) {
    const kit::Value* stored = statistics_.find(key);
    int64_t current = stored ? stored->integer().value_or(0) : 0;
    // A store from elsewhere may hold anything: saturate rather than overflow.
    int64_t sum;
    if (__builtin_add_overflow(current, value, &sum))
        sum = value > 0 ? std::numeric_limits<int64_t>::max() : std::numeric_limits<int64_t>::min();
    statistics_.set(std::move(key), sum);
    return sum;
}

void ZEBStatisticsCore::removeObjectForKey(std::string_view key) {
    statistics_.erase(key);
}

void ZEBStatisticsCore::removeAllObjects() {
    statistics_.clear();
}

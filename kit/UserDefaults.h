#pragma once

#include "kit/Value.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace kit {

// The user settings store: Values under string keys. With a file, the store is read at creation
// and synchronize() writes it whole and atomically; a corrupt or unreadable file gives an empty
// store and one log line. Without a file (the simulated port) it lives in memory.
class UserDefaults {
public:
    UserDefaults();
    explicit UserDefaults(std::filesystem::path file);

    static UserDefaults& standard();

    const Value* find(std::string_view key) const;
    std::optional<std::string> string(std::string_view key) const;
    std::optional<double> number(std::string_view key) const;
    std::optional<int64_t> integer(std::string_view key) const;
    std::optional<bool> boolean(std::string_view key) const;
    std::optional<Value::Date> date(std::string_view key) const;
    const Value::Array* array(std::string_view key) const;
    const Value::Map* map(std::string_view key) const;

    void set(std::string key, Value value);
    void remove(std::string_view key);
    const Value::Map& dictionaryRepresentation() const { return values_; }

    // Writes the store to its file; true on success (always, for a store in memory).
    bool synchronize();

private:
    std::optional<std::filesystem::path> file_;
    Value::Map values_;
};

}  // namespace kit

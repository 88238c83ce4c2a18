#pragma once

#include "kit/Decimal.h"

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

namespace kit {

// A property-list / JSON value: null, bool, number (integer, floating or exact decimal), string,
// date, data, array or insertion-ordered map. Values are plain data: copying a Value copies deeply.
class Value {
public:
    enum class Type { Null, Bool, Integer, Real, Decimal, String, Date, Data, Array, Map };

    // A moment as seconds since 1970-01-01 UTC.
    struct Date {
        double secondsSince1970 = 0;
        bool operator==(const Date&) const = default;
    };
    using Data = std::vector<uint8_t>;
    using Array = std::vector<Value>;
    class Map;

    Value() = default;
    Value(std::nullptr_t) {}
    Value(bool b) : storage_(b) {}
    Value(int i) : storage_(int64_t{i}) {}
    Value(long i) : storage_(int64_t{i}) {}
    Value(long long i) : storage_(int64_t{i}) {}
    Value(unsigned i) : storage_(int64_t{i}) {}
    Value(unsigned long i);
    Value(unsigned long long i);
    Value(float d) : storage_(double{d}) {}
    Value(double d) : storage_(d) {}
    Value(const kit::Decimal& d) : storage_(d) {}
    Value(const char* s) : storage_(std::string(s)) {}
    Value(std::string s) : storage_(std::move(s)) {}
    Value(std::string_view s) : storage_(std::string(s)) {}
    Value(Date d) : storage_(d) {}
    Value(Data d) : storage_(std::move(d)) {}
    Value(Array a) : storage_(std::move(a)) {}
    Value(Map m);

    Type type() const { return static_cast<Type>(storage_.index()); }
    bool isNull() const { return type() == Type::Null; }
    // Integer, real or decimal; a bool is not a number.
    bool isNumber() const {
        return type() == Type::Integer || type() == Type::Real || type() == Type::Decimal;
    }
    bool isString() const { return type() == Type::String; }
    bool isArray() const { return type() == Type::Array; }
    bool isMap() const { return type() == Type::Map; }

    // Typed accessors: none (or nullptr) when the value is of another type.
    std::optional<bool> boolean() const;
    // Any number, truncated toward zero and saturated.
    std::optional<int64_t> integer() const;
    std::optional<double> number() const;
    // Any number, exactly.
    std::optional<kit::Decimal> decimal() const;
    std::optional<Date> date() const;
    const std::string* string() const { return std::get_if<std::string>(&storage_); }
    const Data* data() const { return std::get_if<Data>(&storage_); }
    const Array* array() const { return std::get_if<Array>(&storage_); }
    Array* array() { return std::get_if<Array>(&storage_); }
    const Map* map() const;
    Map* map();

    // Deep equality. Numbers compare by value across representations (1 == 1.0); a map's order
    // does not count.
    bool operator==(const Value& other) const;

    // Readable text for logs: strings bare at the top, maps as { key = value; }, arrays as ( a, b ).
    std::string description() const;

private:
    friend class Map;
    // Moves nested non-empty arrays and maps out into `pending` (see ~Value).
    void detachChildren(std::vector<Value>& pending);
    std::variant<std::monostate, bool, int64_t, double, kit::Decimal, std::string, Date, Data, Array,
                 std::unique_ptr<Map>>
        storage_;

public:
    Value(const Value& other);
    Value(Value&&) noexcept = default;
    Value& operator=(const Value& other);
    Value& operator=(Value&&) noexcept = default;
    ~Value();
};

// A map from string keys to values that remembers insertion order. Setting an existing key
// replaces its value in place. Large maps keep a hash index so lookups stay O(1).
class Value::Map {
public:
    using Entry = std::pair<std::string, Value>;
    using const_iterator = std::vector<Entry>::const_iterator;
    using iterator = std::vector<Entry>::iterator;

    Map() = default;
    Map(std::initializer_list<Entry> entries);
    // Takes the entries in their order; a repeated key keeps its first place and its last value (as
    // set() would). Cheaper than set() one by one: no lookups while filling.
    static Map fromEntries(std::vector<Entry> entries);
    Map(const Map& other);
    Map(Map&&) noexcept = default;
    Map& operator=(const Map& other);
    Map& operator=(Map&&) noexcept = default;
    ~Map();

    size_t size() const { return entries_.size(); }
    bool empty() const { return entries_.empty(); }
    const Value* find(std::string_view key) const;
    Value* find(std::string_view key);
    bool contains(std::string_view key) const { return find(key) != nullptr; }

    // Sets or replaces; returns the stored value.
    Value& set(std::string key, Value value);
    // The value under key, inserted as null when missing.
    Value& operator[](std::string_view key);
    bool erase(std::string_view key);
    void clear();
    void reserve(size_t n) { entries_.reserve(n); }

    const_iterator begin() const { return entries_.begin(); }
    const_iterator end() const { return entries_.end(); }
    // Values may be changed through these; keys must not be.
    iterator begin() { return entries_.begin(); }
    iterator end() { return entries_.end(); }

    // Same keys with equal values, in any order.
    bool operator==(const Map& other) const;

private:
    struct KeyHash {
        using is_transparent = void;
        size_t operator()(std::string_view s) const { return std::hash<std::string_view>{}(s); }
    };
    using Index = std::unordered_map<std::string, size_t, KeyHash, std::equal_to<>>;
    static constexpr size_t kIndexThreshold = 16;

    ptrdiff_t indexOf(std::string_view key) const;
    void rebuildIndex() const;

    std::vector<Entry> entries_;
    mutable std::unique_ptr<Index> index_;
};

}  // namespace kit

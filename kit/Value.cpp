#include "kit/Value.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <ctime>
#include <limits>

namespace kit {

Value::Value(unsigned long i) {
    if (i <= static_cast<unsigned long>(std::numeric_limits<int64_t>::max()))
        storage_ = static_cast<int64_t>(i);
    else
        storage_ = kit::Decimal::fromUnsigned(i);
}

Value::Value(unsigned long long i) : Value(static_cast<unsigned long>(i)) {}

Value::Value(Map m) : storage_(std::make_unique<Map>(std::move(m))) {}

Value::Value(const Value& other) {
    *this = other;
}

Value& Value::operator=(const Value& other) {
    if (this == &other) return *this;
    if (const auto* m = std::get_if<std::unique_ptr<Map>>(&other.storage_)) {
        storage_ = std::make_unique<Map>(**m);
    } else {
        std::visit(
            [this](const auto& v) {
                using T = std::decay_t<decltype(v)>;
                if constexpr (!std::is_same_v<T, std::unique_ptr<Map>>) storage_ = v;
            },
            other.storage_);
    }
    return *this;
}

namespace {
// Containers being destroyed on this thread, one inside the other.
thread_local int destroyDepth = 0;
constexpr int kMaxRecursiveDestroy = 256;
}  // namespace

// Destroying nested arrays and maps recurses; beyond a few hundred levels (a value read with no depth
// limit) the rest is taken apart with a list instead, so that no nesting can overflow the stack.
Value::~Value() {
    size_t index = storage_.index();
    if (index != static_cast<size_t>(Type::Array) && index != static_cast<size_t>(Type::Map)) return;
    if (destroyDepth < kMaxRecursiveDestroy) {
        ++destroyDepth;
        storage_.emplace<std::monostate>();
        --destroyDepth;
        return;
    }
    std::vector<Value> pending;
    detachChildren(pending);
    while (!pending.empty()) {
        Value next = std::move(pending.back());
        pending.pop_back();
        next.detachChildren(pending);
    }
}

void Value::detachChildren(std::vector<Value>& pending) {
    auto nested = [](const Value& v) {
        if (const Array* a = v.array()) return !a->empty();
        const Map* m = v.map();
        return m && !m->empty();
    };
    if (Array* a = array()) {
        for (Value& child : *a)
            if (nested(child)) pending.push_back(std::move(child));
    } else if (Map* m = map()) {
        for (auto& entry : *m)
            if (nested(entry.second)) pending.push_back(std::move(entry.second));
    }
}

const Value::Map* Value::map() const {
    auto* m = std::get_if<std::unique_ptr<Map>>(&storage_);
    return m ? m->get() : nullptr;
}

Value::Map* Value::map() {
    auto* m = std::get_if<std::unique_ptr<Map>>(&storage_);
    return m ? m->get() : nullptr;
}

std::optional<bool> Value::boolean() const {
    if (auto* b = std::get_if<bool>(&storage_)) return *b;
    return std::nullopt;
}

std::optional<int64_t> Value::integer() const {
    switch (type()) {
        case Type::Integer:
            return std::get<int64_t>(storage_);
        case Type::Real: {
            double d = std::get<double>(storage_);
            if (std::isnan(d)) return 0;
            if (d >= 9.2233720368547758e18) return std::numeric_limits<int64_t>::max();
            if (d <= -9.2233720368547758e18) return std::numeric_limits<int64_t>::min();
            return static_cast<int64_t>(d);
        }
        case Type::Decimal:
            return std::get<kit::Decimal>(storage_).toInt64();
        default:
            return std::nullopt;
    }
}

std::optional<double> Value::number() const {
    switch (type()) {
        case Type::Integer:
            return static_cast<double>(std::get<int64_t>(storage_));
        case Type::Real:
            return std::get<double>(storage_);
        case Type::Decimal:
            return std::get<kit::Decimal>(storage_).toDouble();
        default:
            return std::nullopt;
    }
}

std::optional<kit::Decimal> Value::decimal() const {
    switch (type()) {
        case Type::Integer:
            return kit::Decimal::fromInteger(std::get<int64_t>(storage_));
        case Type::Real:
            return kit::Decimal::fromDouble(std::get<double>(storage_));
        case Type::Decimal:
            return std::get<kit::Decimal>(storage_);
        default:
            return std::nullopt;
    }
}

std::optional<Value::Date> Value::date() const {
    if (auto* d = std::get_if<Date>(&storage_)) return *d;
    return std::nullopt;
}

bool Value::operator==(const Value& other) const {
    if (isNumber() && other.isNumber()) {
        if (type() == Type::Integer && other.type() == Type::Integer) return *integer() == *other.integer();
        if (type() == Type::Real || other.type() == Type::Real) {
            // A double that is not finite equals only itself.
            double a = *number(), b = *other.number();
            if (!std::isfinite(a) || !std::isfinite(b)) return a == b;
        }
        return decimal() == other.decimal();
    }
    if (type() != other.type()) return false;
    if (type() == Type::Map) return *map() == *other.map();
    return storage_ == other.storage_;
}

namespace {

bool needsQuotes(const std::string& s) {
    if (s.empty()) return true;
    return !std::all_of(s.begin(), s.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
               c == '.' || c == '/' || c == '-' || c == '$' || c == ':';
    });
}

std::string quoted(const std::string& s) {
    if (!needsQuotes(s)) return s;
    std::string out = "\"";
    for (char c : s) {
        if (c == '"' || c == '\\') out += '\\';
        if (c == '\n') {
            out += "\\n";
            continue;
        }
        out += c;
    }
    return out + '"';
}

std::string formatDouble(double d) {
    char buffer[64];
    auto r = std::to_chars(buffer, buffer + sizeof buffer, d);
    return std::string(buffer, r.ptr);
}

void describe(const Value& v, std::string& out, int level, bool top) {
    std::string pad(static_cast<size_t>(level) * 4, ' ');
    switch (v.type()) {
        case Value::Type::Null:
            out += "<null>";
            break;
        case Value::Type::Bool:
            out += *v.boolean() ? "1" : "0";
            break;
        case Value::Type::Integer:
            out += std::to_string(*v.integer());
            break;
        case Value::Type::Real:
            out += formatDouble(*v.number());
            break;
        case Value::Type::Decimal:
            out += v.decimal()->toString();
            break;
        case Value::Type::String:
            out += top ? *v.string() : quoted(*v.string());
            break;
        case Value::Type::Date: {
            double s = v.date()->secondsSince1970;
            // Only a finite moment within the calendar's reach has a calendar text; any other date
            // (NaN, infinite, or years beyond the calendar) is described by its count of seconds.
            std::tm tm{};
            bool calendar = std::isfinite(s) && std::fabs(s) < 1e17;
            std::time_t t = calendar ? static_cast<std::time_t>(std::floor(s)) : 0;
            if (calendar && gmtime_r(&t, &tm)) {
                char buffer[64];
                std::strftime(buffer, sizeof buffer, "%Y-%m-%d %H:%M:%S +0000", &tm);
                out += buffer;
            } else {
                out += fmt::format("{} seconds since 1970", s);
            }
            break;
        }
        case Value::Type::Data: {
            out += '<';
            const auto& d = *v.data();
            for (size_t i = 0; i < d.size(); ++i) {
                if (i && i % 4 == 0) out += ' ';
                out += fmt::format("{:02x}", d[i]);
            }
            out += '>';
            break;
        }
        case Value::Type::Array: {
            out += "(\n";
            const auto& a = *v.array();
            for (size_t i = 0; i < a.size(); ++i) {
                out += pad + "    ";
                describe(a[i], out, level + 1, false);
                out += i + 1 < a.size() ? ",\n" : "\n";
            }
            out += pad + ")";
            break;
        }
        case Value::Type::Map: {
            out += "{\n";
            for (const auto& [key, value] : *v.map()) {
                out += pad + "    " + quoted(key) + " = ";
                describe(value, out, level + 1, false);
                out += ";\n";
            }
            out += pad + "}";
            break;
        }
    }
}

}  // namespace

std::string Value::description() const {
    std::string out;
    describe(*this, out, 0, true);
    return out;
}

// ---- Map

Value::Map::Map(std::initializer_list<Entry> entries) {
    entries_.reserve(entries.size());
    for (const auto& e : entries) set(e.first, e.second);
}

Value::Map::Map(const Map& other) : entries_(other.entries_) {}

Value::Map Value::Map::fromEntries(std::vector<Entry> entries) {
    Map map;
    const size_t n = entries.size();
    std::vector<bool> repeated;
    auto markRepeat = [&](size_t first, size_t later) {
        entries[first].second = std::move(entries[later].second);
        if (repeated.empty()) repeated.resize(n);
        repeated[later] = true;
    };
    if (n <= kIndexThreshold) {
        for (size_t i = 1; i < n; ++i) {
            const std::string& key = entries[i].first;
            for (size_t j = 0; j < i; ++j) {
                if ((repeated.empty() || !repeated[j]) && entries[j].first == key) {
                    markRepeat(j, i);
                    break;
                }
            }
        }
    } else {
        // Open addressing on the key hashes; slots hold entry index + 1.
        size_t capacity = 1;
        while (capacity < n * 2) capacity <<= 1;
        std::vector<uint32_t> slots(capacity);
        std::hash<std::string_view> hash;
        for (size_t i = 0; i < n; ++i) {
            size_t slot = hash(entries[i].first) & (capacity - 1);
            for (;; slot = (slot + 1) & (capacity - 1)) {
                if (slots[slot] == 0) {
                    slots[slot] = static_cast<uint32_t>(i + 1);
                    break;
                }
                size_t j = slots[slot] - 1;
                if (entries[j].first == entries[i].first) {
                    markRepeat(j, i);
                    break;
                }
            }
        }
    }
    if (!repeated.empty()) {
        size_t kept = 0;
        for (size_t i = 0; i < n; ++i)
            if (!repeated[i]) {
                if (kept != i) entries[kept] = std::move(entries[i]);
                ++kept;
            }
        entries.erase(entries.begin() + static_cast<ptrdiff_t>(kept), entries.end());
    }
    map.entries_ = std::move(entries);
    return map;
}

Value::Map& Value::Map::operator=(const Map& other) {
    if (this != &other) {
        entries_ = other.entries_;
        index_.reset();
    }
    return *this;
}

Value::Map::~Map() = default;

void Value::Map::rebuildIndex() const {
    if (entries_.size() < kIndexThreshold) {
        index_.reset();
        return;
    }
    index_ = std::make_unique<Index>();
    index_->reserve(entries_.size() * 2);
    for (size_t i = 0; i < entries_.size(); ++i) index_->emplace(entries_[i].first, i);
}

ptrdiff_t Value::Map::indexOf(std::string_view key) const {
    if (entries_.size() >= kIndexThreshold) {
        if (!index_) rebuildIndex();
        auto it = index_->find(key);
        return it == index_->end() ? -1 : static_cast<ptrdiff_t>(it->second);
    }
    for (size_t i = 0; i < entries_.size(); ++i)
        if (entries_[i].first == key) return static_cast<ptrdiff_t>(i);
    return -1;
}

const Value* Value::Map::find(std::string_view key) const {
    ptrdiff_t i = indexOf(key);
    return i < 0 ? nullptr : &entries_[static_cast<size_t>(i)].second;
}

Value* Value::Map::find(std::string_view key) {
    ptrdiff_t i = indexOf(key);
    return i < 0 ? nullptr : &entries_[static_cast<size_t>(i)].second;
}

Value& Value::Map::set(std::string key, Value value) {
    if (Value* existing = find(key)) {
        *existing = std::move(value);
        return *existing;
    }
    entries_.emplace_back(std::move(key), std::move(value));
    if (index_) index_->emplace(entries_.back().first, entries_.size() - 1);
    return entries_.back().second;
}

Value& Value::Map::operator[](std::string_view key) {
    if (Value* existing = find(key)) return *existing;
    return set(std::string(key), Value());
}

bool Value::Map::erase(std::string_view key) {
    ptrdiff_t i = indexOf(key);
    if (i < 0) return false;
    entries_.erase(entries_.begin() + i);
    index_.reset();
    return true;
}

void Value::Map::clear() {
    entries_.clear();
    index_.reset();
}

bool Value::Map::operator==(const Map& other) const {
    if (size() != other.size()) return false;
    for (const auto& [key, value] : entries_) {
        const Value* theirs = other.find(key);
        if (!theirs || !(*theirs == value)) return false;
    }
    return true;
}

}  // namespace kit

#include "kit/UserDefaults.h"

#include "kit/FileManager.h"
#include "kit/Log.h"
#include "kit/port/Platform.h"

#include <cstring>

namespace kit {

// The file is a small tagged binary encoding of the whole store: a magic line, the top-level map,
// and a checksum of everything before it. Any mismatch reads as a corrupt file.
namespace {

constexpr std::string_view kMagic = "QBDEFS1\n";
constexpr int kMaxDepth = 256;

enum Tag : uint8_t { Null, False, True, Integer, Real, Decimal, String, Date, Data, Array, Map };

uint32_t checksum(std::string_view bytes) {
    uint32_t h = 2166136261u;  // FNV-1a
    for (unsigned char c : bytes) h = (h ^ c) * 16777619u;
    return h;
}

class Writer {
public:
    std::string out;

    template <class T>
    void raw(T v) {
        char b[sizeof(T)];
        std::memcpy(b, &v, sizeof(T));
        out.append(b, sizeof(T));
    }
    void bytes(std::string_view s) {
        raw(static_cast<uint32_t>(s.size()));
        out.append(s);
    }
    void value(const Value& v) {
        switch (v.type()) {
            case Value::Type::Null:
                raw(Tag::Null);
                break;
            case Value::Type::Bool:
                raw(*v.boolean() ? Tag::True : Tag::False);
                break;
            case Value::Type::Integer:
                raw(Tag::Integer);
                raw(*v.integer());
                break;
            case Value::Type::Real:
                raw(Tag::Real);
                raw(*v.number());
                break;
            case Value::Type::Decimal: {
                kit::Decimal d = *v.decimal();
                raw(Tag::Decimal);
                raw(static_cast<uint64_t>(d.mantissa() >> 64));
                raw(static_cast<uint64_t>(d.mantissa()));
                raw(static_cast<int32_t>(d.exponent()));
                raw(static_cast<uint8_t>(d.isNegative()));
                break;
            }
            case Value::Type::String:
                raw(Tag::String);
                bytes(*v.string());
                break;
            case Value::Type::Date:
                raw(Tag::Date);
                raw(v.date()->secondsSince1970);
                break;
            case Value::Type::Data:
                raw(Tag::Data);
                bytes(std::string_view(reinterpret_cast<const char*>(v.data()->data()), v.data()->size()));
                break;
            case Value::Type::Array:
                raw(Tag::Array);
                raw(static_cast<uint32_t>(v.array()->size()));
                for (const auto& e : *v.array()) value(e);
                break;
            case Value::Type::Map:
                raw(Tag::Map);
                raw(static_cast<uint32_t>(v.map()->size()));
                for (const auto& [key, e] : *v.map()) {
                    bytes(key);
                    value(e);
                }
                break;
        }
    }
};

class Reader {
public:
    explicit Reader(std::string_view in) : in_(in) {}

    template <class T>
    bool raw(T& v) {
        if (in_.size() - pos_ < sizeof(T)) return false;
        std::memcpy(&v, in_.data() + pos_, sizeof(T));
        pos_ += sizeof(T);
        return true;
    }
    bool bytes(std::string& s) {
        uint32_t n = 0;
        if (!raw(n) || in_.size() - pos_ < n) return false;
        s.assign(in_.data() + pos_, n);
        pos_ += n;
        return true;
    }
    bool value(Value& v, int depth) {
        uint8_t tag = 0;
        if (depth > kMaxDepth || !raw(tag)) return false;
        switch (tag) {
            case Tag::Null:
                v = Value();
                return true;
            case Tag::False:
            case Tag::True:
                v = Value(tag == Tag::True);
                return true;
            case Tag::Integer: {
                int64_t i = 0;
                if (!raw(i)) return false;
                v = Value(i);
                return true;
            }
            case Tag::Real:
            case Tag::Date: {
                double d = 0;
                if (!raw(d)) return false;
                v = tag == Tag::Real ? Value(d) : Value(Value::Date{d});
                return true;
            }
            case Tag::Decimal: {
                uint64_t hi = 0, lo = 0;
                int32_t exponent = 0;
                uint8_t negative = 0;
                if (!raw(hi) || !raw(lo) || !raw(exponent) || !raw(negative)) return false;
                auto d = kit::Decimal::make((kit::Decimal::Mantissa(hi) << 64) | lo, exponent, negative != 0);
                if (!d) return false;
                v = Value(*d);
                return true;
            }
            case Tag::String:
            case Tag::Data: {
                std::string s;
                if (!bytes(s)) return false;
                v = tag == Tag::String ? Value(std::move(s)) : Value(Value::Data(s.begin(), s.end()));
                return true;
            }
            case Tag::Array: {
                uint32_t n = 0;
                if (!raw(n) || n > in_.size() - pos_) return false;
                Value::Array a(n);
                for (auto& e : a)
                    if (!value(e, depth + 1)) return false;
                v = Value(std::move(a));
                return true;
            }
            case Tag::Map: {
                uint32_t n = 0;
                if (!raw(n) || n > in_.size() - pos_) return false;
                Value::Map m;
                m.reserve(n);
                for (uint32_t i = 0; i < n; ++i) {
                    std::string key;
                    Value e;
                    if (!bytes(key) || !value(e, depth + 1)) return false;
                    m.set(std::move(key), std::move(e));
                }
                v = Value(std::move(m));
                return true;
            }
            default:
                return false;
        }
    }
    bool atEnd() const { return pos_ == in_.size(); }

private:
    std::string_view in_;
    size_t pos_ = 0;
};

std::optional<Value::Map> decode(std::string_view file) {
    if (file.size() < kMagic.size() + sizeof(uint32_t) || file.substr(0, kMagic.size()) != kMagic)
        return std::nullopt;
    std::string_view body = file.substr(0, file.size() - sizeof(uint32_t));
    uint32_t stored = 0;
    std::memcpy(&stored, file.data() + body.size(), sizeof stored);
    if (stored != checksum(body)) return std::nullopt;
    Reader reader(body.substr(kMagic.size()));
    Value top;
    if (!reader.value(top, 0) || !reader.atEnd() || !top.map()) return std::nullopt;
    return std::move(*top.map());
}

}  // namespace

UserDefaults::UserDefaults() = default;

UserDefaults::UserDefaults(std::filesystem::path file) : file_(std::move(file)) {
    std::error_code ec;
    if (!std::filesystem::exists(*file_, ec)) return;  // first run: nothing stored yet
    std::optional<std::string> bytes = FileManager({}).read(*file_);
    std::optional<Value::Map> stored = bytes ? decode(*bytes) : std::nullopt;
    if (!stored) {
        Log::format("Settings file {} is unreadable or corrupt; starting with empty settings",
                    file_->string());
        return;
    }
    values_ = std::move(*stored);
}

UserDefaults& UserDefaults::standard() {
    return Platform::current().userDefaults();
}

const Value* UserDefaults::find(std::string_view key) const {
    return values_.find(key);
}

std::optional<std::string> UserDefaults::string(std::string_view key) const {
    const Value* v = find(key);
    if (v && v->string()) return *v->string();
    return std::nullopt;
}

std::optional<double> UserDefaults::number(std::string_view key) const {
    const Value* v = find(key);
    return v ? v->number() : std::nullopt;
}

std::optional<int64_t> UserDefaults::integer(std::string_view key) const {
    const Value* v = find(key);
    return v ? v->integer() : std::nullopt;
}

std::optional<bool> UserDefaults::boolean(std::string_view key) const {
    const Value* v = find(key);
    return v ? v->boolean() : std::nullopt;
}

std::optional<Value::Date> UserDefaults::date(std::string_view key) const {
    const Value* v = find(key);
    return v ? v->date() : std::nullopt;
}

const Value::Array* UserDefaults::array(std::string_view key) const {
    const Value* v = find(key);
    return v ? v->array() : nullptr;
}

const Value::Map* UserDefaults::map(std::string_view key) const {
    const Value* v = find(key);
    return v ? v->map() : nullptr;
}

void UserDefaults::set(std::string key, Value value) {
    values_.set(std::move(key), std::move(value));
}

void UserDefaults::remove(std::string_view key) {
    values_.erase(key);
}

bool UserDefaults::synchronize() {
    if (!file_) return true;
    Writer writer;
    writer.out.append(kMagic);
    writer.value(Value(values_));
    writer.raw(checksum(writer.out));
    FileManager files({});
    std::shared_ptr<const Error> error;
    if (file_->has_parent_path() && !files.createFolder(file_->parent_path(), &error)) {
        Log::write(error->localizedDescription());
        return false;
    }
    if (!files.writeAtomically(*file_, writer.out, &error)) {
        Log::write(error->localizedDescription());
        return false;
    }
    return true;
}

}  // namespace kit

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kit {

// The header fields of an HTTP request or response. Names compare without regard to case and
// keep the spelling they were first set with; the fields keep their order.
class HttpHeaders {
public:
    using Field = std::pair<std::string, std::string>;

    HttpHeaders() = default;
    HttpHeaders(std::initializer_list<Field> fields);

    // None when the field is absent.
    std::optional<std::string> value(std::string_view name) const;
    bool contains(std::string_view name) const { return find(name) != nullptr; }
    // Replaces the field's value, or adds the field at the end.
    void set(std::string_view name, std::string_view value);
    // Adds to a field already present as HTTP folds repeated fields: "a, b".
    void add(std::string_view name, std::string_view value);
    void remove(std::string_view name);

    const std::vector<Field>& fields() const { return fields_; }
    size_t size() const { return fields_.size(); }
    bool empty() const { return fields_.empty(); }

    // Same fields and values in any order; names without regard to case.
    bool operator==(const HttpHeaders& other) const;

    static bool namesEqual(std::string_view a, std::string_view b);

private:
    const Field* find(std::string_view name) const;
    std::vector<Field> fields_;
};

}  // namespace kit

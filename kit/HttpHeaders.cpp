#include "kit/HttpHeaders.h"

#include <algorithm>

namespace kit {

namespace {
char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
}  // namespace

HttpHeaders::HttpHeaders(std::initializer_list<Field> fields) {
    for (const auto& [name, value] : fields) add(name, value);
}

bool HttpHeaders::namesEqual(std::string_view a, std::string_view b) {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return lower(x) == lower(y); });
}

const HttpHeaders::Field* HttpHeaders::find(std::string_view name) const {
    for (const auto& field : fields_)
        if (namesEqual(field.first, name)) return &field;
    return nullptr;
}

std::optional<std::string> HttpHeaders::value(std::string_view name) const {
    if (const Field* field = find(name)) return field->second;
    return std::nullopt;
}

void HttpHeaders::set(std::string_view name, std::string_view value) {
    if (Field* field = const_cast<Field*>(find(name))) {
        field->second = value;
        return;
    }
    fields_.emplace_back(std::string(name), std::string(value));
}

void HttpHeaders::add(std::string_view name, std::string_view value) {
    if (Field* field = const_cast<Field*>(find(name))) {
        field->second += ", ";
        field->second += value;
        return;
    }
    fields_.emplace_back(std::string(name), std::string(value));
}

void HttpHeaders::remove(std::string_view name) {
    std::erase_if(fields_, [&](const Field& field) { return namesEqual(field.first, name); });
}

bool HttpHeaders::operator==(const HttpHeaders& other) const {
    if (fields_.size() != other.fields_.size()) return false;
    return std::all_of(fields_.begin(), fields_.end(),
                       [&](const Field& field) { return other.value(field.first) == field.second; });
}

}  // namespace kit

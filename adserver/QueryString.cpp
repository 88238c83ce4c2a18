#include "adserver/QueryString.h"

#include <cstring>

namespace {
int hexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

std::string decode(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        char c = text[i];
        if (c == '+') {
            out += ' ';
        } else if (c == '%' && i + 2 < text.size() && hexValue(text[i + 1]) >= 0 &&
                   hexValue(text[i + 2]) >= 0) {
            out += static_cast<char>(hexValue(text[i + 1]) * 16 + hexValue(text[i + 2]));
            i += 2;
        } else {
            out += c;
        }
    }
    return out;
}
}  // namespace

std::vector<QueryString::Pair> QueryString::parse(std::string_view query) {
    std::vector<Pair> pairs;
    while (!query.empty()) {
        size_t end = query.find('&');
        std::string_view piece = query.substr(0, end);
        query.remove_prefix(end == std::string_view::npos ? query.size() : end + 1);
        if (piece.empty()) continue;
        size_t equals = piece.find('=');
        if (equals == std::string_view::npos)
            pairs.emplace_back(decode(piece), std::string());
        else
            pairs.emplace_back(decode(piece.substr(0, equals)), decode(piece.substr(equals + 1)));
    }
    return pairs;
}

std::optional<std::string> QueryString::value(const std::vector<Pair>& pairs, std::string_view name) {
    for (const auto& [key, value] : pairs)
        if (key == name) return value;
    return std::nullopt;
}

std::string QueryString::encode(std::string_view text) {
    static const char* const kHex = "0123456789ABCDEF";
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        auto byte = static_cast<unsigned char>(c);
        bool unreserved = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
                          (byte >= '0' && byte <= '9') || (byte != 0 && std::strchr("-_.!~*'()", byte));
        if (unreserved) {
            out += c;
        } else {
            out += '%';
            out += kHex[byte >> 4];
            out += kHex[byte & 0xf];
        }
    }
    return out;
}

std::string QueryString::build(const std::vector<Pair>& pairs) {
    std::string out;
    for (const auto& [name, value] : pairs) {
        if (!out.empty()) out += '&';
        out += encode(name);
        out += '=';
        out += encode(value);
    }
    return out;
}

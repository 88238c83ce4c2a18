#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Query strings as the ad server receives and builds them. Parsing never fails: what is malformed is
// kept literally, so that every byte a client sent can be stored and shown.
class QueryString {
public:
    using Pair = std::pair<std::string, std::string>;

    // Pieces between '&', in order, empty ones skipped; name and value split at the first '='
    // (a piece without one is a name with an empty value). '+' is a space, "%XX" the byte XX; a '%'
    // not followed by two hex digits stays as it is. Repeated names are all kept.
    static std::vector<Pair> parse(std::string_view query);
    // The value of the first pair named `name`.
    static std::optional<std::string> value(const std::vector<Pair>& pairs, std::string_view name);
    // Percent-encodes every byte except A-Z a-z 0-9 - _ . ! ~ * ' ( ), as the web engine's
    // encodeURIComponent does for UTF-8 text.
    static std::string encode(std::string_view text);
    // "name=value&..." of the pairs, each part encoded.
    static std::string build(const std::vector<Pair>& pairs);
};

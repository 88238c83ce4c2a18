#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kit {

// A URL or relative reference (RFC 3986), parsed with Boost.URL. The text it was made from is kept
// as the absolute string, unchanged.
class Url {
public:
    // None for text that is not a URL reference.
    static std::optional<Url> parse(std::string_view text);
    // `text` resolved against `base` (a relative reference becomes absolute).
    static std::optional<Url> parse(std::string_view text, const Url& base);

    const std::string& absoluteString() const { return text_; }
    // As written: "PELKO" stays upper case. Empty for a relative reference.
    std::string scheme() const;
    // None when the URL has no authority.
    std::optional<std::string> host() const;
    std::optional<int> port() const;
    // Percent-decoded.
    std::string path() const;
    // Still percent-encoded; none when there is no "?".
    std::optional<std::string> query() const;
    // Still percent-encoded; none when there is no "#".
    std::optional<std::string> fragment() const;

    bool operator==(const Url& other) const { return text_ == other.text_; }

    // Percent-encodes UTF-8 text, keeping only the unreserved characters (letters, digits, "-._~")
    // and those in `keep`.
    static std::string percentEncode(std::string_view text, std::string_view keep = {});
    // None when an escape is malformed.
    static std::optional<std::string> percentDecode(std::string_view text);

private:
    explicit Url(std::string text) : text_(std::move(text)) {}
    std::string text_;
};

}  // namespace kit

#include "kit/Url.h"

#include <boost/url.hpp>

namespace kit {
namespace urls = boost::urls;

namespace {
urls::url_view view(const std::string& text) {
    // Only texts that parsed are ever kept, so this cannot fail.
    return urls::parse_uri_reference(text).value();
}
}  // namespace

std::optional<Url> Url::parse(std::string_view text) {
    if (!urls::parse_uri_reference(urls::string_view(text.data(), text.size()))) return std::nullopt;
    return Url(std::string(text));
}

std::optional<Url> Url::parse(std::string_view text, const Url& base) {
    auto reference = urls::parse_uri_reference(urls::string_view(text.data(), text.size()));
    if (!reference) return std::nullopt;
    urls::url_view baseView = view(base.text_);
    if (!baseView.has_scheme()) return std::nullopt;
    urls::url resolved;
    if (!urls::resolve(baseView, *reference, resolved)) return std::nullopt;
    return Url(std::string(resolved.buffer()));
}

std::string Url::scheme() const {
    return std::string(view(text_).scheme());
}

std::optional<std::string> Url::host() const {
    urls::url_view v = view(text_);
    if (!v.has_authority()) return std::nullopt;
    return std::string(v.host());
}

std::optional<int> Url::port() const {
    urls::url_view v = view(text_);
    if (!v.has_port() || v.port().empty()) return std::nullopt;
    return static_cast<int>(v.port_number());
}

std::string Url::path() const {
    return std::string(view(text_).path());
}

std::optional<std::string> Url::query() const {
    urls::url_view v = view(text_);
    if (!v.has_query()) return std::nullopt;
    return std::string(v.encoded_query());
}

std::optional<std::string> Url::fragment() const {
    urls::url_view v = view(text_);
    if (!v.has_fragment()) return std::nullopt;
    return std::string(v.encoded_fragment());
}

std::string Url::percentEncode(std::string_view text, std::string_view keep) {
    static constexpr char kHex[] = "0123456789ABCDEF";
    std::string out;
    out.reserve(text.size());
    for (unsigned char c : text) {
        bool unreserved = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                          c == '-' || c == '.' || c == '_' || c == '~';
        if (unreserved || (c != 0 && keep.find(static_cast<char>(c)) != std::string_view::npos)) {
            out += static_cast<char>(c);
        } else {
            out += '%';
            out += kHex[c >> 4];
            out += kHex[c & 15];
        }
    }
    return out;
}

std::optional<std::string> Url::percentDecode(std::string_view text) {
    auto hex = [](char c) -> int {
        if (c >= '0' && c <= '9') return c - '0';
        if (c >= 'a' && c <= 'f') return c - 'a' + 10;
        if (c >= 'A' && c <= 'F') return c - 'A' + 10;
        return -1;
    };
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            out += text[i];
            continue;
        }
        if (i + 2 >= text.size()) return std::nullopt;
        int hi = hex(text[i + 1]), lo = hex(text[i + 2]);
        if (hi < 0 || lo < 0) return std::nullopt;
        out += static_cast<char>(hi * 16 + lo);
        i += 2;
    }
    return out;
}

}  // namespace kit

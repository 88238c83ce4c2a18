#include "adserver/Escape.h"

#include <fmt/format.h>

std::string Escape::html(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        switch (c) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                out += "&quot;";
                break;
            case '\'':
                out += "&#39;";
                break;
            default:
                out += c;
        }
    }
    return out;
}

namespace {
// Length of the well-formed UTF-8 sequence at the start of `text`, 0 when there is none (overlong
// forms, surrogates and code points above U+10FFFF are not well formed).
size_t sequenceLength(std::string_view text) {
    auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
    unsigned char lead = byte(0);
    if (lead < 0x80) return 1;
    size_t length = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : lead >= 0xc0 ? 2 : 0;
    if (length == 0 || lead > 0xf4 || lead == 0xc0 || lead == 0xc1 || text.size() < length) return 0;
    for (size_t i = 1; i < length; ++i)
        if ((byte(i) & 0xc0) != 0x80) return 0;
    unsigned char second = byte(1);
    if (lead == 0xe0 && second < 0xa0) return 0;  // overlong
    if (lead == 0xed && second > 0x9f) return 0;  // surrogate
    if (lead == 0xf0 && second < 0x90) return 0;  // overlong
    if (lead == 0xf4 && second > 0x8f) return 0;  // above U+10FFFF
    return length;
}
}  // namespace

std::string Escape::displayable(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) {
        size_t length = sequenceLength(text);
        if (length == 0) {
            out += "\xef\xbf\xbd";
            length = 1;
        } else {
            out.append(text.substr(0, length));
        }
        text.remove_prefix(length);
    }
    return out;
}

std::string Escape::forLog(std::string_view text, size_t limit) {
    std::string out;
    for (size_t i = 0; i < text.size() && i < limit; ++i) {
        auto c = static_cast<unsigned char>(text[i]);
        if (c < 0x20 || c >= 0x7f || c == '\\')
            out += fmt::format("\\x{:02x}", c);
        else
            out += static_cast<char>(c);
    }
    if (text.size() > limit) out += fmt::format("...({} bytes)", text.size());
    return out;
}

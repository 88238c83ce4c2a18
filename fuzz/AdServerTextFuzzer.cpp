// The reference ad server's readers of outside text: query strings as they arrive, dates in
// If-Modified-Since, and the escapes that make stored bytes safe to show.
#include "adserver/Escape.h"
#include "adserver/HttpDate.h"
#include "adserver/QueryString.h"

#include <cstdlib>
#include <string_view>

namespace {
void check(bool condition) {
    if (!condition) std::abort();
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string_view text(reinterpret_cast<const char*>(data), size);
    auto pairs = QueryString::parse(text);
    // What the server builds from pairs reads back as the same pairs.
    check(QueryString::parse(QueryString::build(pairs)) == pairs);

    std::string shown = Escape::displayable(text);
    check(Escape::displayable(shown) == shown);
    std::string html = Escape::html(text);
    check(html.find_first_of("<>\"'") == std::string::npos);
    std::string line = Escape::forLog(text, 64);
    for (char c : line) check(c >= 0x20 && c < 0x7f);

    if (auto time = HttpDate::parse(text)) check(HttpDate::parse(HttpDate::format(*time)) == time);
    return 0;
}

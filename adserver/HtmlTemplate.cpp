#include "adserver/HtmlTemplate.h"

#include "adserver/Escape.h"

#include <stdexcept>

std::string HtmlTemplate::fill(std::string_view page, const Values& values) {
    std::string out;
    out.reserve(page.size() + 256);
    while (true) {
        size_t open = page.find("{{");
        if (open == std::string_view::npos) break;
        size_t close = page.find("}}", open + 2);
        if (close == std::string_view::npos) break;
        out.append(page.substr(0, open));
        std::string_view name = page.substr(open + 2, close - open - 2);
        const std::string* value = nullptr;
        for (const auto& [key, v] : values)
            if (key == name) value = &v;
        if (!value) throw std::logic_error("no value for {{" + std::string(name) + "}}");
        out += Escape::html(*value);
        page.remove_prefix(close + 2);
    }
    out.append(page);
    return out;
}

#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Fills "{{name}}" places of a page with values, each escaped for HTML text and quoted attributes.
// Values never go into script text: a page's scripts read them from data- attributes.
class HtmlTemplate {
public:
    using Values = std::vector<std::pair<std::string_view, std::string>>;
    // Throws std::logic_error for a place that has no value (a fault of the page, not of a request).
    static std::string fill(std::string_view page, const Values& values);
};

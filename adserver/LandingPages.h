#pragma once

#include "adserver/QueryString.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The pages that clicks land on: links (to pages, another application, mail and a telephone), a
// form and the page that answers it, a long page, and a page that plays a sound.
class LandingPages {
public:
    static const std::vector<std::string>& names();
    // None for a name that is no landing page. `query` is the page's own query (the form's answers).
    static std::optional<std::string> page(std::string_view name,
                                           const std::vector<QueryString::Pair>& query);
};

#pragma once

#include <optional>
#include <string_view>
#include <vector>

// The faults the server puts on an answer when a slot or a request asks for one: the cases that the ad
// client must survive. Each has a name for configuration files and query strings.
class Fault {
public:
    enum class Kind {
        BadRequest,     // "400"
        NotFound,       // "404"
        ServerError,    // "500"
        Unavailable,    // "503"
        Stall,          // "stall": no answer until the stall time is over or the server stops
        Truncated,      // "truncated": half the body, then the connection closes
        RedirectLoop,   // "redirect-loop": two addresses that redirect to each other
        StoreRedirect,  // "store-redirect": a redirect to an application-store address
        Empty,          // "empty": 200 with no body
        WhiteSpace,     // "whitespace": 200 with only white space
        BrokenPage,     // "broken-page": a page (or script) that loads and then fails
    };

    static const std::vector<Kind>& all();
    static std::string_view name(Kind kind);
    static std::optional<Kind> named(std::string_view name);
    // The HTTP status of a status fault, none for the others.
    static std::optional<int> status(Kind kind);
};

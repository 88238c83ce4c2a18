#include "adserver/Fault.h"

#include <array>
#include <utility>

namespace {
constexpr std::array<std::pair<Fault::Kind, std::string_view>, 11> kNames = {{
    {Fault::Kind::BadRequest, "400"},
    {Fault::Kind::NotFound, "404"},
    {Fault::Kind::ServerError, "500"},
    {Fault::Kind::Unavailable, "503"},
    {Fault::Kind::Stall, "stall"},
    {Fault::Kind::Truncated, "truncated"},
    {Fault::Kind::RedirectLoop, "redirect-loop"},
    {Fault::Kind::StoreRedirect, "store-redirect"},
    {Fault::Kind::Empty, "empty"},
    {Fault::Kind::WhiteSpace, "whitespace"},
    {Fault::Kind::BrokenPage, "broken-page"},
}};
}  // namespace

const std::vector<Fault::Kind>& Fault::all() {
    static const std::vector<Kind> kinds = [] {
        std::vector<Kind> out;
        for (const auto& entry : kNames) out.push_back(entry.first);
        return out;
    }();
    return kinds;
}

std::string_view Fault::name(Kind kind) {
    for (const auto& [k, name] : kNames)
        if (k == kind) return name;
    return "";
}

std::optional<Fault::Kind> Fault::named(std::string_view name) {
    for (const auto& [kind, n] : kNames)
        if (n == name) return kind;
    return std::nullopt;
}

std::optional<int> Fault::status(Kind kind) {
    switch (kind) {
        case Kind::BadRequest:
            return 400;
        case Kind::NotFound:
            return 404;
        case Kind::ServerError:
            return 500;
        case Kind::Unavailable:
            return 503;
        default:
            return std::nullopt;
    }
}

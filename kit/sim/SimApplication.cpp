#include "kit/sim/SimApplication.h"

#include <algorithm>
#include <cctype>

namespace kit::sim {
namespace {
std::string lower(std::string s) {
    std::transform(s.begin(), s.end(), s.begin(), [](unsigned char c) { return std::tolower(c); });
    return s;
}
}  // namespace

bool SimApplication::openUrl(const Url& url) {
    if (!canOpenUrl(url)) return false;
    opened_.push_back(url.absoluteString());
    return true;
}

bool SimApplication::canOpenUrl(const Url& url) const {
    return openable_.count(lower(url.scheme())) != 0;
}

void SimApplication::setOpenableSchemes(std::set<std::string> schemes) {
    openable_.clear();
    for (const auto& s : schemes) openable_.insert(lower(s));
}

}  // namespace kit::sim

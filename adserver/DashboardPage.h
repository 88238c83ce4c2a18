#pragma once

#include <string_view>

// The dashboard at "/": one page, no outside assets, that shows the counts per slot and per
// mediated network and the latest events, updated live from the JSON of DashboardApi.
class DashboardPage {
public:
    static std::string_view html();
};

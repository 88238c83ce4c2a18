#pragma once

#include "adserver/Event.h"

#include <cstdint>
#include <map>
#include <string>

// Running counts of the stored events, per slot and per mediated network.
//
// Requests and fills are ad requests and those answered with a creative or a mediation document.
// Impressions are the client's impression pings and mediation "/imp" reports; clicks are hits on the
// click redirector and "/clk" reports; no-fills are ad requests answered empty and "/nofill" reports;
// pings are all hits on the tracking address. For networks, requests and fills count the house
// network's ad requests.
class EventTally {
public:
    struct Counts {
        int64_t requests = 0, fills = 0, impressions = 0, clicks = 0, nofills = 0, pings = 0;
        bool operator==(const Counts&) const = default;
    };

    void add(const Event& event, int64_t times = 1);

    const std::map<std::string, Counts>& slots() const { return slots_; }
    const std::map<std::string, Counts>& networks() const { return networks_; }
    const Counts& totals() const { return totals_; }

private:
    std::map<std::string, Counts> slots_;
    std::map<std::string, Counts> networks_;
    Counts totals_;
};

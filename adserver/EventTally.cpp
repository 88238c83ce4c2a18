#include "adserver/EventTally.h"

void EventTally::add(const Event& event, int64_t times) {
    Counts change;
    const std::string& kind = event.kind;
    if (kind == "request") {
        change.requests = times;
        if (event.outcome == "fill") change.fills = times;
        if (event.outcome == "nofill") change.nofills = times;
    } else if (kind == "house") {
        change.requests = times;
        if (event.outcome == "fill") change.fills = times;
        if (event.outcome == "nofill") change.nofills = times;
    } else if (kind == "ping") {
        change.pings = times;
        if (event.outcome == "imp") change.impressions = times;
    } else if (kind == "imp") {
        change.impressions = times;
    } else if (kind == "click" || kind == "clk") {
        change.clicks = times;
    } else if (kind == "nofill") {
        change.nofills = times;
    } else {
        return;
    }
    auto apply = [&](Counts& counts) {
        counts.requests += change.requests;
        counts.fills += change.fills;
        counts.impressions += change.impressions;
        counts.clicks += change.clicks;
        counts.nofills += change.nofills;
        counts.pings += change.pings;
    };
    if (!event.network.empty()) apply(networks_[event.network]);
    // The house network's own requests are not ad requests of a slot.
    if (kind == "house") return;
    apply(totals_);
    if (!event.slot.empty()) apply(slots_[event.slot]);
}

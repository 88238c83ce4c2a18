#pragma once

#include "adserver/Event.h"
#include "adserver/EventTally.h"

#include <cstdint>
#include <string>
#include <vector>

// The JSON answers that the dashboard polls (and tests read). Stored bytes that are not UTF-8 are
// shown with U+FFFD in their place.
class DashboardApi {
public:
    // {"slots": [{"slot", "requests", "fills", "impressions", "clicks", "nofills", "pings"}, ...],
    //  "networks": [the same with "network"], "totals": {...}, "lastEventId": n}
    static std::string stats(const EventTally& tally, int64_t lastEventId);
    // {"events": [{"id", "time", "kind", "slot", "network", "outcome", "detail", "path",
    //  "params": [[name, value], ...]}, ...]}, in the order given.
    static std::string events(const std::vector<Event>& events);
};

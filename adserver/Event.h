#pragma once

#include <cstdint>
#include <string>

// One stored event: an ad request, a tracking ping, a click, an event report of mediation or a
// request to the house network. Outside text (slot, network, query) is kept byte for byte.
struct Event {
    int64_t id = 0;
    // Seconds since 1970, UTC.
    double time = 0;
    // "request", "ping", "click", "imp", "clk", "nofill" or "house".
    std::string kind;
    std::string slot;
    std::string network;
    // What the server made of it: for a request "fill", "nofill", "fault", "off" or "invalid"; for a
    // ping its event ("imp", "click", ...); for the house network "fill" or "nofill".
    std::string outcome;
    // The creative or the fault, when there is one.
    std::string detail;
    std::string path;
    // The query string exactly as it arrived.
    std::string query;
};

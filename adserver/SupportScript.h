#pragma once

#include "adserver/SlotTable.h"

#include <string>
#include <string_view>

// The support script "sdk-core-v40.js". The ad client runs it in an off-screen web view and calls
// QUOR_buildAdURL(parameters); the script checks the parameters against the slot table, builds the ad
// URL from every parameter it received, and answers through the script bridge with "loadAdURL" ("url"
// and "type", or "errors"), "invalidRequest" or "unableToServe".
class SupportScript {
public:
    // The script for a client that reaches the server at `origin` ("http://host:port").
    static std::string text(const SlotTable& slots, std::string_view origin);
    // A script that loads but whose QUOR_buildAdURL throws before it answers.
    static std::string broken();
};

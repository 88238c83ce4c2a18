#pragma once

#include "adserver/Slot.h"
#include "kit/Value.h"

#include <string>

// The mediation answer for a slot: the networks to walk, in order, with their adapters and
// credentials, the ad type, the slot's settings and "qdata", which the client sends back unchanged in
// its event reports.
class MediationDocument {
public:
    // `interstitial` when the request asked for a full-screen ad; `qdata` ties reports to the request.
    static kit::Value build(const Slot& slot, bool interstitial, const std::string& qdata);
    static std::string json(const Slot& slot, bool interstitial, const std::string& qdata);
};

#include "adserver/MediationDocument.h"

#include "ads/ThirdParty/ZEBJSON.h"

using kit::Value;

kit::Value MediationDocument::build(const Slot& slot, bool interstitial, const std::string& qdata) {
    // The house network answers over HTTP on this server (/house/ad); its adapter is linked into the
    // soundboard.
    Value::Map house{{"id", "house"},
                     {"adapters", Value::Array{"ZEBMAdapterHouse"}},
                     {"data", Value::Map{{"pubid", interstitial ? "house-interstitial" : "house-banner"}}}};
    Value::Map document{
        {"ad_networks", Value::Array{Value(std::move(house))}},
        {"ad_type", interstitial ? "interstitial" : "banner"},
        {"settings", Value::Map{{"refresh", int64_t(slot.refreshSeconds)}, {"ad_transition_anim", 8}}},
        {"qdata", qdata},
    };
    for (const auto& [key, value] : slot.mediation) document.set(key, value);
    return document;
}

std::string MediationDocument::json(const Slot& slot, bool interstitial, const std::string& qdata) {
    return ZEBJSON().stringWithObjectError(build(slot, interstitial, qdata)).value_or("{}");
}

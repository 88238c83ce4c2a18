#include "adserver/DashboardApi.h"

#include "ads/ThirdParty/ZEBJSON.h"
#include "adserver/Escape.h"
#include "adserver/QueryString.h"

using kit::Value;

namespace {

Value::Map counts(const EventTally::Counts& c) {
    return Value::Map{{"requests", c.requests}, {"fills", c.fills},     {"impressions", c.impressions},
                      {"clicks", c.clicks},     {"nofills", c.nofills}, {"pings", c.pings}};
}

Value::Array rows(const std::map<std::string, EventTally::Counts>& table, const char* key) {
    Value::Array out;
    for (const auto& [name, c] : table) {
        Value::Map row{{key, Escape::displayable(name)}};
        for (auto& [k, v] : counts(c)) row.set(k, v);
        out.emplace_back(std::move(row));
    }
    return out;
}

std::string write(const Value& value) {
    return ZEBJSON().stringWithObjectError(value).value_or("{}");
}

}  // namespace

std::string DashboardApi::stats(const EventTally& tally, int64_t lastEventId) {
    return write(Value::Map{{"slots", rows(tally.slots(), "slot")},
                            {"networks", rows(tally.networks(), "network")},
                            {"totals", counts(tally.totals())},
                            {"lastEventId", lastEventId}});
}

std::string DashboardApi::events(const std::vector<Event>& events) {
    Value::Array list;
    list.reserve(events.size());
    for (const Event& event : events) {
        Value::Array params;
        for (const auto& [name, value] : QueryString::parse(event.query))
            params.emplace_back(Value::Array{Escape::displayable(name), Escape::displayable(value)});
        list.emplace_back(Value::Map{{"id", event.id},
                                     {"time", event.time},
                                     {"kind", Escape::displayable(event.kind)},
                                     {"slot", Escape::displayable(event.slot)},
                                     {"network", Escape::displayable(event.network)},
                                     {"outcome", Escape::displayable(event.outcome)},
                                     {"detail", Escape::displayable(event.detail)},
                                     {"path", Escape::displayable(event.path)},
                                     {"params", std::move(params)}});
    }
    return write(Value::Map{{"events", std::move(list)}});
}

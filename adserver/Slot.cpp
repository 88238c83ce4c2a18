#include "adserver/Slot.h"

#include "adserver/CreativeLibrary.h"

#include <fmt/format.h>

std::string Slot::typeWord() const {
    if (!type.empty()) return type;
    return answer == Answer::Mediation ? "tessar" : "pelko";
}

std::string Slot::size() const {
    return fmt::format("{}x{}", width, height);
}

std::optional<Slot::Answer> Slot::answerNamed(std::string_view name) {
    if (name == "creative") return Answer::Creative;
    if (name == "mediation") return Answer::Mediation;
    if (name == "nofill") return Answer::NoFill;
    if (name == "errors") return Answer::Errors;
    if (name == "off") return Answer::Off;
    return std::nullopt;
}

namespace {
bool fail(std::string* error, std::string text) {
    if (error) *error = std::move(text);
    return false;
}

// Reads one key into the slot; false with *error set when it cannot.
bool readKey(Slot& slot, const std::string& key, const kit::Value& value, std::string* error) {
    auto wrong = [&](std::string_view expected) {
        return fail(error, fmt::format("slot \"{}\": \"{}\" must be {}", slot.id, key, expected));
    };
    auto nonNegative = [&](double& field) {
        auto number = value.number();
        if (!number || *number < 0) return wrong("a number of seconds, 0 or more");
        field = *number;
        return true;
    };
    auto text = [&](std::string& field) {
        if (!value.string()) return wrong("a string");
        field = *value.string();
        return true;
    };
    if (key == "answer") {
        auto answer = value.string() ? Slot::answerNamed(*value.string()) : std::nullopt;
        if (!answer) return wrong("one of creative, mediation, nofill, errors, off");
        slot.answer = *answer;
    } else if (key == "size") {
        if (!value.string() || (*value.string() != "320x50" && *value.string() != "768x90"))
            return wrong("\"320x50\" or \"768x90\"");
        slot.width = *value.string() == "320x50" ? 320 : 768;
        slot.height = *value.string() == "320x50" ? 50 : 90;
    } else if (key == "creatives") {
        std::string expected = fmt::format("a list of creative names ({})", CreativeLibrary::nameList());
        if (!value.array()) return wrong(expected);
        slot.creatives.clear();
        for (const kit::Value& name : *value.array()) {
            if (!name.string() || !CreativeLibrary::has(*name.string())) return wrong(expected);
            slot.creatives.push_back(*name.string());
        }
    } else if (key == "refresh") {
        return nonNegative(slot.refreshSeconds);
    } else if (key == "interstitialTimeout") {
        return nonNegative(slot.interstitialTimeout);
    } else if (key == "orientation") {
        return text(slot.orientation);
    } else if (key == "type") {
        return text(slot.type);
    } else if (key == "clickTracking") {
        if (!value.boolean()) return wrong("true or false");
        slot.clickTracking = *value.boolean();
    } else if (key == "fault") {
        auto fault = value.string() ? Fault::named(*value.string()) : std::nullopt;
        if (!fault) return wrong("the name of a fault");
        slot.fault = fault;
    } else if (key == "mediation") {
        if (!value.map()) return wrong("an object");
        slot.mediation = *value.map();
    } else {
        return fail(error, fmt::format("slot \"{}\": unknown key \"{}\"", slot.id, key));
    }
    return true;
}
}  // namespace

std::optional<Slot> Slot::fromJson(std::string id, const kit::Value& value, std::string* error) {
    Slot slot;
    slot.id = std::move(id);
    if (slot.id.empty()) {
        fail(error, "a slot has an empty identifier");
        return std::nullopt;
    }
    if (!value.map()) {
        fail(error, fmt::format("slot \"{}\" must be an object", slot.id));
        return std::nullopt;
    }
    for (const auto& [key, entry] : *value.map())
        if (!readKey(slot, key, entry, error)) return std::nullopt;
    return slot;
}

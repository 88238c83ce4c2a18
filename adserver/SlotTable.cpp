#include "adserver/SlotTable.h"

#include "ads/ThirdParty/ZEBJSON.h"

#include <fmt/format.h>

#include <fstream>
#include <memory>
#include <sstream>

namespace {
Slot makeSlot(std::string id, Slot::Answer answer) {
    Slot slot;
    slot.id = std::move(id);
    slot.answer = answer;
    return slot;
}
}  // namespace

SlotTable SlotTable::builtIn() {
    SlotTable table;
    // The soundboard's ad units (app/ViewController.cpp), by device idiom.
    table.put(makeSlot("a1b2c3d4e5f6a7b", Slot::Answer::Creative));
    Slot tablet = makeSlot("a1f9e8d7c6b5a49", Slot::Answer::Creative);
    tablet.width = 768;
    tablet.height = 90;
    table.put(tablet);
    table.put(makeSlot("demo-mediation", Slot::Answer::Mediation));
    table.put(makeSlot("demo-nofill", Slot::Answer::NoFill));
    table.put(makeSlot("demo-off", Slot::Answer::Off));
    table.put(makeSlot("demo-errors", Slot::Answer::Errors));
    for (Fault::Kind kind : Fault::all()) {
        Slot slot = makeSlot(fmt::format("fault-{}", Fault::name(kind)), Slot::Answer::Creative);
        slot.fault = kind;
        table.put(slot);
    }
    return table;
}

std::optional<SlotTable> SlotTable::withFile(const std::string& path, std::string* error) {
    std::ifstream file(path, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    if (!file) {
        if (error) *error = fmt::format("cannot read the configuration file {}", path);
        return std::nullopt;
    }
    std::string reason;
    auto table = withJson(text.str(), &reason);
    if (!table && error) *error = fmt::format("{}: {}", path, reason);
    return table;
}

std::optional<SlotTable> SlotTable::withJson(std::string_view text, std::string* error) {
    auto fail = [&](std::string reason) -> std::optional<SlotTable> {
        if (error) *error = std::move(reason);
        return std::nullopt;
    };
    std::shared_ptr<const kit::Error> parseError;
    auto document = ZEBJSON().objectWithStringError(text, &parseError);
    if (!document || !document->map())
        return fail(fmt::format("not a JSON object ({})",
                                parseError ? parseError->localizedDescription() : "an array at the top"));
    SlotTable table = builtIn();
    for (const auto& [key, value] : *document->map()) {
        if (key == "slots") {
            if (!value.map()) return fail("\"slots\" must be an object of slots by identifier");
            for (const auto& [id, entry] : *value.map()) {
                auto slot = Slot::fromJson(id, entry, error);
                if (!slot) return std::nullopt;
                table.put(std::move(*slot));
            }
        } else if (key == "script") {
            const kit::Value* fault = value.map() ? value.map()->find("fault") : nullptr;
            auto kind = fault && fault->string() ? Fault::named(*fault->string()) : std::nullopt;
            if (!kind || value.map()->size() != 1)
                return fail("\"script\" must be {\"fault\": <the name of a fault>}");
            table.scriptFault_ = kind;
        } else {
            return fail(fmt::format("unknown key \"{}\" (known: \"slots\", \"script\")", key));
        }
    }
    return table;
}

const Slot* SlotTable::find(std::string_view id) const {
    for (const Slot& slot : slots_)
        if (slot.id == id) return &slot;
    return nullptr;
}

void SlotTable::put(Slot slot) {
    for (Slot& existing : slots_) {
        if (existing.id == slot.id) {
            existing = std::move(slot);
            return;
        }
    }
    slots_.push_back(std::move(slot));
}

#pragma once

#include "adserver/Fault.h"
#include "adserver/Slot.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The slots the server knows, and the fault (if any) of its support script. Built once at start and
// read by every request thread; never changed after.
class SlotTable {
public:
    // The soundboard's two ad units (phone 320x50, tablet 768x90), a mediated, a no-fill, a
    // switched-off and an "errors" slot, and a slot "fault-<name>" for each fault.
    static SlotTable builtIn();
    // The built-in slots with those of a configuration file added, or replacing the ones of the same
    // identifier. None with *error set (one line) when the file cannot be read or is not valid.
    static std::optional<SlotTable> withFile(const std::string& path, std::string* error);
    static std::optional<SlotTable> withJson(std::string_view text, std::string* error);

    const Slot* find(std::string_view id) const;
    const std::vector<Slot>& slots() const { return slots_; }
    std::optional<Fault::Kind> scriptFault() const { return scriptFault_; }

    void put(Slot slot);

private:
    std::vector<Slot> slots_;
    std::optional<Fault::Kind> scriptFault_;
};

#include "ads/Utility/ZEBPrivateUtilities.h"

#include "kit/SharedInstances.h"

#include <unordered_map>

namespace {
// Keyed by address only: a key is never dereferenced, so a public object may remove its entry from
// its destructor.
struct Table {
    std::unordered_map<const kit::Object*, std::shared_ptr<kit::Object>> objects;
};

std::unordered_map<const kit::Object*, std::shared_ptr<kit::Object>>& table() {
    return kit::shared<Table>().objects;
}
}  // namespace

void ZEBPrivateUtilities::setPrivateObjectForKey(std::shared_ptr<kit::Object> object,
                                                 const kit::Object* key) {
    if (!key) return;
    if (!object) {
        removePrivateObjectForKey(key);
        return;
    }
    table()[key] = std::move(object);
}

std::shared_ptr<kit::Object> ZEBPrivateUtilities::privateObjectForKey(const kit::Object* key) {
    auto found = table().find(key);
    return found == table().end() ? nullptr : found->second;
}

void ZEBPrivateUtilities::removePrivateObjectForKey(const kit::Object* key) {
    auto found = table().find(key);
    if (found == table().end()) return;
    // The companion's destructor may touch the table itself: release it after the entry is gone.
    std::shared_ptr<kit::Object> companion = std::move(found->second);
    table().erase(found);
}

size_t ZEBPrivateUtilities::count() {
    return table().size();
}

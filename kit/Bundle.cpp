#include "kit/Bundle.h"

#include "kit/PropertyList.h"
#include "kit/port/Platform.h"

namespace kit {

Bundle& Bundle::main() {
    return Platform::current().mainBundle();
}

void Bundle::loadInfoDictionary(const PortKey&, const std::filesystem::path& file) {
    std::optional<Value> list = PropertyList::readFile(file);
    info_ = list && list->isMap() ? std::move(*list->map()) : Value::Map{};
}

std::string Bundle::text(std::string_view key) const {
    const Value* value = info_.find(key);
    return value && value->string() ? *value->string() : std::string();
}

}  // namespace kit

#include "kit/Bundle.h"

#include "kit/port/Platform.h"
#include "kit/PropertyList.h"

namespace kit {

Bundle& Bundle::main() {
    return Platform::current().mainBundle();
}

void Bundle::loadInfoDictionary(const PortKey&, const std::filesystem::path& file) {
    std::optional<Value> list = PropertyList::readFile(file);
    info_ = list && list->isMap() ? std::move(*list->map()) : Value::Map{};
}

}  // namespace kit

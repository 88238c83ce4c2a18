#include "kit/CachedUrlResponse.h"

namespace kit {

size_t CachedUrlResponse::cost() const {
    size_t cost = data_.size() + response_.url().absoluteString().size();
    for (const auto& [name, value] : response_.allHeaderFields().fields()) cost += name.size() + value.size();
    return cost;
}

}  // namespace kit

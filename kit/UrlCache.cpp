#include "kit/UrlCache.h"

#include "kit/SharedInstances.h"

namespace kit {

namespace {
std::string keyFor(const UrlRequest& request) {
    const std::string& text = request.url().absoluteString();
    return text.substr(0, text.find('#'));
}
}  // namespace

UrlCache& UrlCache::shared() {
    return kit::shared<UrlCache>();
}

void UrlCache::setMemoryCapacity(size_t bytes) {
    capacity_ = bytes;
    evictDownTo(capacity_);
}

std::shared_ptr<const CachedUrlResponse> UrlCache::cachedResponseForRequest(const UrlRequest& request) {
    auto found = index_.find(keyFor(request));
    if (found == index_.end()) return nullptr;
    entries_.splice(entries_.begin(), entries_, found->second);
    return found->second->response;
}

void UrlCache::storeCachedResponseForRequest(std::shared_ptr<const CachedUrlResponse> response,
                                             const UrlRequest& request) {
    if (!response) return;
    std::string key = keyFor(request);
    if (auto found = index_.find(key); found != index_.end()) removeEntry(found->second);
    size_t cost = response->cost();
    if (cost > capacity_) return;
    evictDownTo(capacity_ - cost);
    entries_.push_front(Entry{key, std::move(response)});
    index_[key] = entries_.begin();
    usage_ += cost;
}

void UrlCache::removeCachedResponseForRequest(const UrlRequest& request) {
    if (auto found = index_.find(keyFor(request)); found != index_.end()) removeEntry(found->second);
}

void UrlCache::removeAllCachedResponses() {
    entries_.clear();
    index_.clear();
    usage_ = 0;
}

void UrlCache::removeEntry(std::list<Entry>::iterator entry) {
    usage_ -= entry->response->cost();
    index_.erase(entry->key);
    entries_.erase(entry);
}

void UrlCache::evictDownTo(size_t bytes) {
    while (usage_ > bytes && !entries_.empty()) removeEntry(std::prev(entries_.end()));
}

}  // namespace kit

#pragma once

#include "kit/CachedUrlResponse.h"
#include "kit/UrlRequest.h"

#include <list>
#include <memory>
#include <string>
#include <unordered_map>

namespace kit {

// The process's shared cache of answers, in memory only, keyed by the request's URL without its
// fragment. When the answers kept cost more than the memory capacity, the least recently used go
// first. The capacity starts at 0: nothing is kept until someone gives the cache room.
class UrlCache {
public:
    UrlCache() = default;
    UrlCache(const UrlCache&) = delete;
    UrlCache& operator=(const UrlCache&) = delete;

    // The installed platform's cache.
    static UrlCache& shared();

    size_t memoryCapacity() const { return capacity_; }
    // Shrinking drops the least recently used answers until the rest fit.
    void setMemoryCapacity(size_t bytes);
    size_t currentMemoryUsage() const { return usage_; }

    // None when nothing is kept for the request's URL.
    std::shared_ptr<const CachedUrlResponse> cachedResponseForRequest(const UrlRequest& request);
    // An answer that alone costs more than the capacity is not kept.
    void storeCachedResponseForRequest(std::shared_ptr<const CachedUrlResponse> response,
                                       const UrlRequest& request);
    void removeCachedResponseForRequest(const UrlRequest& request);
    void removeAllCachedResponses();

private:
    struct Entry {
        std::string key;
        std::shared_ptr<const CachedUrlResponse> response;
    };
    void removeEntry(std::list<Entry>::iterator entry);
    void evictDownTo(size_t bytes);

    size_t capacity_ = 0;
    size_t usage_ = 0;
    // Most recently used first.
    std::list<Entry> entries_;
    std::unordered_map<std::string, std::list<Entry>::iterator> index_;
};

}  // namespace kit

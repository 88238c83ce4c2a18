#include "ads/Network/ZEBCachedFile.h"

#include "ads/ThirdParty/KBLStringEncoding.h"
#include "ads/Utility/ZEBNetworkUtilities.h"
#include "kit/Clock.h"
#include "kit/FileManager.h"
#include "kit/RunLoop.h"
#include "kit/SharedInstances.h"
#include "kit/UrlCache.h"

#include <fmt/format.h>

#include <cctype>
#include <cstdint>
#include <limits>

namespace fs = std::filesystem;

ZEBCachedFileDelegate::~ZEBCachedFileDelegate() = default;

namespace {

// The factory that replaces kit's own, when one does.
struct ConnectionFactory {
    std::shared_ptr<kit::UrlConnectionFactory> overridden;
};

std::shared_ptr<kit::UrlConnectionFactory>& overriddenFactory() {
    return kit::shared<ConnectionFactory>().overridden;
}

// FNV-1a: stable across runs and builds, unlike std::hash.
uint64_t stableHash(std::string_view text) {
    uint64_t hash = 0xcbf29ce484222325ull;
    for (unsigned char c : text) {
        hash ^= c;
        hash *= 0x100000001b3ull;
    }
    return hash;
}

// The folder named after the host must stay a single entry inside the caches folder whatever the
// URL says ("..", "a/../../b" decoded from "%2F", an empty or missing host, a name too long for the
// file system). Every byte other than a letter, a digit, "-" and a "." that is not the first is
// written as "%XX", so no "/" or NUL survives and the name never starts with "." (no "." or "..");
// no host at all is "%"; a name that would be too long is replaced by its hash.
std::string folderNameForHost(const std::optional<std::string>& host) {
    if (!host || host->empty()) return "%";
    std::string name;
    for (size_t i = 0; i < host->size(); ++i) {
        unsigned char c = static_cast<unsigned char>((*host)[i]);
        if (std::isalnum(c) || c == '-' || (c == '.' && i > 0))
            name += static_cast<char>(c);
        else
            name += fmt::format("%{:02X}", c);
    }
    if (name.size() > 200) return fmt::format("%{:x}", stableHash(*host));
    return name;
}

}  // namespace

ZEBCachedFile::ZEBCachedFile(std::weak_ptr<ZEBCachedFileDelegate> delegate, const kit::Url& url)
    : sourceURL_(url), httpDestinationURL_(url), delegate_(std::move(delegate)) {}

std::shared_ptr<ZEBCachedFile> ZEBCachedFile::createWithDelegateURL(
    std::weak_ptr<ZEBCachedFileDelegate> delegate, const kit::Url& url) {
    return std::make_shared<ZEBCachedFile>(std::move(delegate), url);
}

ZEBCachedFile::~ZEBCachedFile() {
    delegate_.reset();
    cleanUpConnection();
}

std::shared_ptr<ZEBCachedFileDelegate> ZEBCachedFile::delegate() {
    kit::RunLoop::main().keepAlive(retained(this));
    return delegate_.lock();
}

const std::optional<fs::path>& ZEBCachedFile::filePath() const {
    if (!filePathComputed_) {
        filePathComputed_ = true;
        const fs::path& caches = kit::FileManager::defaultManager().cachesFolder();
        if (!caches.empty())
            filePath_ = caches / folderNameForHost(sourceURL_.host()) /
                        fmt::format("{:x}", stableHash(sourceURL_.absoluteString()));
    }
    return filePath_;
}

bool ZEBCachedFile::hasContent() const {
    const auto& path = filePath();
    return path && kit::FileManager::defaultManager().exists(*path);
}

std::optional<std::string> ZEBCachedFile::content() const {
    const auto& path = filePath();
    if (!path) return std::nullopt;
    auto bytes = kit::FileManager::defaultManager().read(*path);
    if (!bytes || !KBLStringEncoding::isUtf8(*bytes)) return std::nullopt;
    return bytes;
}

void ZEBCachedFile::validate() {
    if (!connection_) beginFetchWithCacheBuster(false);
}

void ZEBCachedFile::validateWithCacheBuster() {
    if (!connection_) beginFetchWithCacheBuster(true);
}

void ZEBCachedFile::cancel() {
    cleanUpConnection();
}

void ZEBCachedFile::invalidate() {
    cleanUpConnection();
    if (const auto& path = filePath()) kit::FileManager::defaultManager().remove(*path);
}

std::optional<std::string> ZEBCachedFile::fileModificationDate() const {
    const auto& path = filePath();
    if (!path) return std::nullopt;
    auto time = kit::FileManager::defaultManager().modificationTime(*path);
    if (!time) return std::nullopt;
    return formatterForHTTPDate().stringFromDate(*time);
}

std::string ZEBCachedFile::description() const {
    const auto& path = filePath();
    std::string file = path ? path->string() : "(null)";
    return fmt::format("<{}: {}> HTTP code: {}\n\turl: {}\n\tfile: {}", className(),
                       static_cast<const void*>(this), httpStatusCode_, sourceURL_.absoluteString(), file);
}

void ZEBCachedFile::beginFetchWithCacheBuster(bool cacheBuster) {
    auto self = retained(this);
    kit::Url url = sourceURL_;
    if (cacheBuster) {
        std::string now = fmt::format("{:.0f}", kit::Clock::secondsSince1970());
        if (auto busted = ZEBNetworkUtilities::appendQueryKeyValueToURL(kCacheBusterKey, now, sourceURL_))
            url = *busted;
    }
    kit::UrlCache& cache = kit::UrlCache::shared();
    if (cache.memoryCapacity() == 0) cache.setMemoryCapacity(kMinimumCacheCapacity);

    kit::UrlRequest request(url, cacheBuster ? kit::UrlRequest::CachePolicy::ReloadIgnoringLocalCacheData
                                             : kit::UrlRequest::CachePolicy::Default);
    request.setHttpShouldHandleCookies(true);
    if (auto agent = ZEBNetworkUtilities::userAgentString(); agent && !agent->empty())
        request.setValueForHttpHeaderField(*agent, "User-Agent");
    if (auto modified = fileModificationDate())
        request.setValueForHttpHeaderField(*modified, "If-Modified-Since");

    auto cached = cache.cachedResponseForRequest(request);
    if (responseIsFresh(cached)) {
        processResponse(cached->response());
        receivedData_ = cached->data();
        saveDataToFile();
        return;
    }
    cache.removeCachedResponseForRequest(request);
    connection_ = connectionFactory()->newConnectionWithRequestDelegateStartImmediately(
        request, std::weak_ptr<kit::UrlConnectionDelegate>(self), true);
    if (connection_)
        receivedData_.emplace();
    else
        tellDidFail(nullptr);
}

void ZEBCachedFile::processResponse(const kit::UrlResponse& response) {
    if (!response.isHttp()) return;
    httpStatusCode_ = response.statusCode();
    httpHeaders_ = response.allHeaderFields();
    if (httpStatusCode_ == 200) {
        receivedModificationDate_ = response.allHeaderFields().value("Last-Modified");
        // The date pattern has no zone: the zone is cut off before parsing.
        if (receivedModificationDate_) {
            if (size_t zone = receivedModificationDate_->find("GMT"); zone != std::string::npos)
                receivedModificationDate_->resize(zone);
        }
    } else if (httpStatusCode_ == 304) {
        tellDidEnd();
        cleanUpConnection();
    } else {
        tellDidFail(nullptr);
        cleanUpConnection();
    }
}

void ZEBCachedFile::saveDataToFile() {
    auto& files = kit::FileManager::defaultManager();
    std::shared_ptr<const kit::Error> error;
    const auto& path = filePath();
    if (!path) {
        tellDidFail(kit::Error::make(kit::FileManager::kErrorDomain, ENOENT,
                                     {{kit::Error::kLocalizedDescriptionKey, "No caches folder"}}));
        return;
    }
    if (!files.exists(path->parent_path())) files.createFolder(path->parent_path());
    if (!files.writeAtomically(*path, receivedData_.value_or(""), &error)) {
        tellDidFail(error);
        return;
    }
    tellDidEnd();
    if (receivedModificationDate_ && !receivedModificationDate_->empty()) {
        if (auto date = formatterForHTTPDate().dateFromString(*receivedModificationDate_))
            files.setModificationTime(*path, *date);
    }
    receivedModificationDate_.reset();
}

void ZEBCachedFile::cleanUpConnection() {
    if (connection_) {
        connection_->cancel();
        connection_.reset();
    }
    receivedData_.reset();
    receivedModificationDate_.reset();
}

void ZEBCachedFile::tellDidEnd() {
    if (auto d = delegate()) d->cachedFileDownloadDidEnd(*this);
}

void ZEBCachedFile::tellDidFail(std::shared_ptr<const kit::Error> error) {
    if (auto d = delegate()) d->cachedFileDownloadDidFail(*this, std::move(error));
}

std::optional<kit::UrlRequest> ZEBCachedFile::connectionWillSendRequestRedirectResponse(
    kit::UrlConnection&, const kit::UrlRequest& request, const kit::UrlResponse* redirectResponse) {
    auto self = retained(this);
    httpDestinationURL_ = request.url();
    if (redirectResponse) {
        httpHeaders_ = headersForResponse(*redirectResponse);
        std::shared_ptr<const kit::Error> refusal;
        if (auto d = delegate()) refusal = d->cachedFileShouldRedirectToURL(*this, request.url());
        if (refusal) {
            cleanUpConnection();
            tellDidFail(refusal);
        }
    }
    return request;
}

void ZEBCachedFile::connectionDidReceiveResponse(kit::UrlConnection&, const kit::UrlResponse& response) {
    auto self = retained(this);
    processResponse(response);
    if (connection_) receivedData_.emplace();
}

void ZEBCachedFile::connectionDidReceiveData(kit::UrlConnection&, std::string_view data) {
    if (receivedData_) receivedData_->append(data);
}

void ZEBCachedFile::connectionDidFinishLoading(kit::UrlConnection&) {
    auto self = retained(this);
    saveDataToFile();
    cleanUpConnection();
}

void ZEBCachedFile::connectionDidFailWithError(kit::UrlConnection&, std::shared_ptr<const kit::Error> error) {
    auto self = retained(this);
    cleanUpConnection();
    tellDidFail(std::move(error));
}

void ZEBCachedFile::overrideConnectionFactoryWith(std::shared_ptr<kit::UrlConnectionFactory> factory) {
    overriddenFactory() = std::move(factory);
}

std::shared_ptr<kit::UrlConnectionFactory> ZEBCachedFile::connectionFactory() {
    // Until the mediation layer offers its factory, kit's own opens the connections.
    if (auto factory = overriddenFactory()) return factory;
    return kit::UrlConnectionFactory::plain();
}

const kit::HttpDateFormatter& ZEBCachedFile::formatterForHTTPDate() {
    return kit::HttpDateFormatter::shared();
}

std::optional<kit::HttpHeaders> ZEBCachedFile::headersForResponse(const kit::UrlResponse& response) {
    if (!response.isHttp()) return std::nullopt;
    return response.allHeaderFields();
}

int64_t ZEBCachedFile::maxAgeFromCacheControl(std::optional<std::string_view> cacheControl) {
    if (!cacheControl) return -1;
    static constexpr std::string_view kMaxAge = "max-age=";
    size_t at = cacheControl->find(kMaxAge);
    if (at == std::string_view::npos) return -1;
    std::string_view rest = cacheControl->substr(at + kMaxAge.size());
    size_t i = 0;
    while (i < rest.size() && std::isspace(static_cast<unsigned char>(rest[i]))) ++i;
    bool negative = i < rest.size() && rest[i] == '-';
    if (i < rest.size() && (rest[i] == '-' || rest[i] == '+')) ++i;
    if (i >= rest.size() || !std::isdigit(static_cast<unsigned char>(rest[i]))) return -1;
    int64_t value = 0;
    constexpr int64_t kMax = std::numeric_limits<int64_t>::max();
    for (; i < rest.size() && std::isdigit(static_cast<unsigned char>(rest[i])); ++i)
        value = value > (kMax - (rest[i] - '0')) / 10 ? kMax : value * 10 + (rest[i] - '0');
    return negative ? -value : value;
}

bool ZEBCachedFile::isNoCacheOrNoStore(std::optional<std::string_view> cacheControl) {
    if (!cacheControl) return false;
    return cacheControl->find("no-cache") != std::string_view::npos ||
           cacheControl->find("no-store") != std::string_view::npos;
}

bool ZEBCachedFile::responseIsFresh(const std::shared_ptr<const kit::CachedUrlResponse>& cachedResponse) {
    if (!cachedResponse) return false;
    const kit::HttpHeaders& headers = cachedResponse->response().allHeaderFields();
    auto dateText = headers.value("Date");
    if (!dateText) return false;
    auto date = formatterForHTTPDate().dateFromStringLeniently(*dateText);
    if (!date) return false;
    auto control = headers.value("Cache-Control");
    if (isNoCacheOrNoStore(control)) return false;
    double expiry = *date + static_cast<double>(maxAgeFromCacheControl(control));
    return kit::Clock::secondsSince1970() <= expiry;
}

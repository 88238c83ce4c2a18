#pragma once

#include "ads/Network/ZEBCachedFileDelegate.h"
#include "kit/CachedUrlResponse.h"
#include "kit/HttpDateFormatter.h"
#include "kit/HttpHeaders.h"
#include "kit/Object.h"
#include "kit/UrlConnection.h"
#include "kit/UrlConnectionFactory.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

// One URL downloaded over HTTP into a file of its own under the caches folder, revalidated with the
// server on later fetches (If-Modified-Since from the file's time, 304 keeps the file), served from
// the shared answer cache while fresh, and saved atomically so that the last good content survives
// any failure.
class ZEBCachedFile : public kit::Object, public kit::UrlConnectionDelegate {
public:
    static std::shared_ptr<ZEBCachedFile> createWithDelegateURL(std::weak_ptr<ZEBCachedFileDelegate> delegate,
                                                                const kit::Url& url);
    ZEBCachedFile(std::weak_ptr<ZEBCachedFileDelegate> delegate, const kit::Url& url);
    ~ZEBCachedFile() override;

    const kit::Url& sourceURL() const { return sourceURL_; }
    // The URL of the request being sent: the source, then each redirect's target.
    const kit::Url& httpDestinationURL() const { return httpDestinationURL_; }
    // Also keeps this download alive to the end of the run loop's turn, so that a delegate that lets
    // go of it inside a callback does not destroy it while it runs.
    std::shared_ptr<ZEBCachedFileDelegate> delegate();
    void setDelegate(std::weak_ptr<ZEBCachedFileDelegate> delegate) { delegate_ = std::move(delegate); }
    // Of the last HTTP response; 0 before any.
    int32_t httpStatusCode() const { return httpStatusCode_; }
    // Of the last HTTP response or redirect.
    const std::optional<kit::HttpHeaders>& httpHeaders() const { return httpHeaders_; }
    // Where the content lives; none when the system has no caches folder.
    const std::optional<std::filesystem::path>& filePath() const;
    bool isFetching() const { return connection_ != nullptr; }

    bool hasContent() const;
    // The file as UTF-8 text; none when it cannot be read or is not UTF-8.
    std::optional<std::string> content() const;
    // Start a fetch unless one is running.
    void validate();
    void validateWithCacheBuster();
    // Stops the fetch without telling the delegate.
    void cancel();
    // Stops the fetch and deletes the file.
    void invalidate();
    // The file's time in HTTP date form; none when there is no file.
    std::optional<std::string> fileModificationDate() const;

    std::string description() const override;

    // Replaces the factory that opens connections, for as long as the platform lives; none restores
    // the default.
    static void overrideConnectionFactoryWith(std::shared_ptr<kit::UrlConnectionFactory> factory);
    static std::shared_ptr<kit::UrlConnectionFactory> connectionFactory();
    static const kit::HttpDateFormatter& formatterForHTTPDate();
    // None for an answer that is not HTTP.
    static std::optional<kit::HttpHeaders> headersForResponse(const kit::UrlResponse& response);
    // The integer after "max-age="; -1 when there is none.
    static int64_t maxAgeFromCacheControl(std::optional<std::string_view> cacheControl);
    static bool isNoCacheOrNoStore(std::optional<std::string_view> cacheControl);
    // Fresh while now is not later than its Date plus max-age (so never without max-age).
    static bool responseIsFresh(const std::shared_ptr<const kit::CachedUrlResponse>& cachedResponse);

    // The time-stamped query key that the cache buster adds.
    static constexpr const char* kCacheBusterKey = "unique";
    // The shared answer cache gets at least this much room when it has none.
    static constexpr size_t kMinimumCacheCapacity = 512000;

    // kit::UrlConnectionDelegate
    std::optional<kit::UrlRequest> connectionWillSendRequestRedirectResponse(
        kit::UrlConnection& connection, const kit::UrlRequest& request,
        const kit::UrlResponse* redirectResponse) override;
    void connectionDidReceiveResponse(kit::UrlConnection& connection,
                                      const kit::UrlResponse& response) override;
    void connectionDidReceiveData(kit::UrlConnection& connection, std::string_view data) override;
    void connectionDidFinishLoading(kit::UrlConnection& connection) override;
    void connectionDidFailWithError(kit::UrlConnection& connection,
                                    std::shared_ptr<const kit::Error> error) override;

private:
    void beginFetchWithCacheBuster(bool cacheBuster);
    void processResponse(const kit::UrlResponse& response);
    void saveDataToFile();
    void cleanUpConnection();
    void tellDidEnd();
    void tellDidFail(std::shared_ptr<const kit::Error> error);

    kit::Url sourceURL_;
    kit::Url httpDestinationURL_;
    std::weak_ptr<ZEBCachedFileDelegate> delegate_;
    int32_t httpStatusCode_ = 0;
    std::optional<kit::HttpHeaders> httpHeaders_;
    // Computed on first use.
    mutable bool filePathComputed_ = false;
    mutable std::optional<std::filesystem::path> filePath_;
    std::shared_ptr<kit::UrlConnection> connection_;
    std::optional<std::string> receivedData_;
    std::optional<std::string> receivedModificationDate_;
};

#pragma once

#include "kit/CallGroup.h"
#include "kit/Object.h"
#include "kit/UrlConnectionDelegate.h"
#include "kit/UrlRequest.h"
#include "kit/UrlResponse.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace kit {

class UrlLoader;

// An asynchronous HTTP load that reports to a delegate on the run loop (see UrlConnectionDelegate).
// It follows redirects hop by hop, asking the delegate before each one, so every hop is seen, also
// one to a scheme that cannot be loaded. Complete 200 answers to GET requests that do not forbid
// it are stored in the shared UrlCache; answers are never taken from it.
//
// Whoever opens a connection owns it: dropping the last reference cancels the load. The delegate is
// not retained; a connection whose delegate is gone cancels itself.
class UrlConnection : public Object {
public:
    // More redirects than this end the load with UrlError::kTooManyRedirects.
    static constexpr int kMaximumRedirects = 16;

    static std::shared_ptr<UrlConnection> create(const UrlRequest& request,
                                                 std::weak_ptr<UrlConnectionDelegate> delegate,
                                                 bool startImmediately = true);
    ~UrlConnection() override;

    // Does nothing once started or cancelled.
    void start();
    // No call reaches the delegate afterwards.
    void cancel();

    const UrlRequest& originalRequest() const { return original_; }
    // The request of the current hop.
    const UrlRequest& currentRequest() const { return current_; }
    bool isLoading() const { return stage_ == Stage::Asking || stage_ == Stage::Loading; }

    UrlConnection(const UrlRequest& request, std::weak_ptr<UrlConnectionDelegate> delegate);

private:
    enum class Stage { Idle, Asking, Loading, Done };
    class LoaderClient;

    std::shared_ptr<UrlConnectionDelegate> delegateOrCancel();
    void askToSend(const UrlRequest& request, const UrlResponse* redirectResponse);
    void openHop();
    void failLater(int code, const std::string& description = {});
    void finish();
    void dropLoader();
    static bool isRedirect(const UrlResponse& response);

    // The port's reports on the current hop.
    void loaderDidReceiveResponse(const UrlResponse& response);
    void loaderDidReceiveData(std::string_view data);
    void loaderDidFinish();
    void loaderDidFail(std::shared_ptr<const Error> error);

    UrlRequest original_;
    UrlRequest current_;
    std::weak_ptr<UrlConnectionDelegate> delegate_;
    Stage stage_ = Stage::Idle;
    std::unique_ptr<LoaderClient> client_;
    std::unique_ptr<UrlLoader> loader_;
    CallGroup calls_;
    int redirects_ = 0;
    std::optional<UrlResponse> response_;
    // The body as it comes, kept while the answer may go into the cache.
    std::optional<std::string> cacheBody_;
};

}  // namespace kit

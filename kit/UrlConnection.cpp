#include "kit/UrlConnection.h"

#include "kit/CachedUrlResponse.h"
#include "kit/RunLoop.h"
#include "kit/UrlCache.h"
#include "kit/UrlError.h"
#include "kit/port/Platform.h"
#include "kit/port/UrlLoader.h"

#include <algorithm>
#include <cctype>

namespace kit {

namespace {
std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

bool mayBeCached(const UrlRequest& request, const UrlResponse& response) {
    if (request.httpMethod() != "GET" || response.statusCode() != 200) return false;
    std::string control = lower(response.allHeaderFields().value("Cache-Control").value_or(""));
    return control.find("no-store") == std::string::npos;
}
}  // namespace

// Hands the port's reports on to the connection, keeping them out of its public face. The
// connection lives to the end of the report's turn, so it never goes while its loader reports.
class UrlConnection::LoaderClient : public UrlLoader::Client {
public:
    explicit LoaderClient(UrlConnection& connection) : connection_(connection) {}
    void loaderDidReceiveResponse(const UrlResponse& response) override {
        keep().loaderDidReceiveResponse(response);
    }
    void loaderDidReceiveData(std::string_view data) override { keep().loaderDidReceiveData(data); }
    void loaderDidFinish() override { keep().loaderDidFinish(); }
    void loaderDidFail(std::shared_ptr<const Error> error) override {
        keep().loaderDidFail(std::move(error));
    }

private:
    UrlConnection& keep() {
        RunLoop::main().keepAlive(retained(&connection_));
        return connection_;
    }
    UrlConnection& connection_;
};

UrlConnection::UrlConnection(const UrlRequest& request, std::weak_ptr<UrlConnectionDelegate> delegate)
    : original_(request),
      current_(request),
      delegate_(std::move(delegate)),
      client_(std::make_unique<LoaderClient>(*this)) {}

std::shared_ptr<UrlConnection> UrlConnection::create(const UrlRequest& request,
                                                     std::weak_ptr<UrlConnectionDelegate> delegate,
                                                     bool startImmediately) {
    auto connection = std::make_shared<UrlConnection>(request, std::move(delegate));
    if (startImmediately) connection->start();
    return connection;
}

// Never inside a report of the loader (see LoaderClient), so the loader can go at once.
UrlConnection::~UrlConnection() {
    if (loader_) loader_->cancel();
}

void UrlConnection::start() {
    if (stage_ != Stage::Idle) return;
    stage_ = Stage::Asking;
    calls_.post([this] {
        if (stage_ == Stage::Asking) askToSend(original_, nullptr);
    });
}

void UrlConnection::cancel() {
    if (stage_ == Stage::Done) return;
    // Keep the loader's owner alive to the end of this turn: cancel may come from inside a report.
    auto self = retained(this);
    stage_ = Stage::Done;
    calls_.cancelAll();
    dropLoader();
    cacheBody_.reset();
}

std::shared_ptr<UrlConnectionDelegate> UrlConnection::delegateOrCancel() {
    auto delegate = delegate_.lock();
    if (!delegate) cancel();
    return delegate;
}

void UrlConnection::askToSend(const UrlRequest& request, const UrlResponse* redirectResponse) {
    auto self = retained(this);
    auto delegate = delegateOrCancel();
    if (!delegate) return;
    std::optional<UrlRequest> answer =
        delegate->connectionWillSendRequestRedirectResponse(*this, request, redirectResponse);
    if (stage_ == Stage::Done) return;
    if (!answer) {
        if (!redirectResponse) {
            cancel();
            return;
        }
        // The redirect's own answer becomes the response; its body follows from the same loader.
        stage_ = Stage::Loading;
        response_ = *redirectResponse;
        delegate->connectionDidReceiveResponse(*this, *redirectResponse);
        return;
    }
    dropLoader();
    current_ = std::move(*answer);
    openHop();
}

void UrlConnection::openHop() {
    stage_ = Stage::Loading;
    response_.reset();
    cacheBody_.reset();
    std::string scheme = lower(current_.url().scheme());
    if (scheme != "http" && scheme != "https") {
        failLater(UrlError::kUnsupportedUrl);
        return;
    }
    loader_ = Platform::current().createUrlLoader(current_, *client_);
    if (!loader_) {
        failLater(UrlError::kUnsupportedUrl, "This platform has no network.");
        return;
    }
    loader_->start();
}

void UrlConnection::failLater(int code, const std::string& description) {
    auto error = UrlError::make(code, current_.url().absoluteString(), description);
    calls_.post([this, error] {
        if (stage_ == Stage::Loading) loaderDidFail(error);
    });
}

void UrlConnection::dropLoader() {
    if (!loader_) return;
    loader_->cancel();
    // A loader may be dropped from inside one of its own reports: it goes at the end of the turn.
    RunLoop::main().keepAlive(std::shared_ptr<UrlLoader>(std::move(loader_)));
}

bool UrlConnection::isRedirect(const UrlResponse& response) {
    int status = response.statusCode();
    bool redirectStatus = status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
    return redirectStatus && response.allHeaderFields().contains("Location");
}

void UrlConnection::loaderDidReceiveResponse(const UrlResponse& response) {
    auto self = retained(this);
    if (response.isHttp() && isRedirect(response)) {
        auto target = Url::parse(*response.allHeaderFields().value("Location"), current_.url());
        if (target) {
            if (++redirects_ > kMaximumRedirects) {
                loaderDidFail(UrlError::make(UrlError::kTooManyRedirects, current_.url().absoluteString()));
                return;
            }
            UrlRequest next = current_;
            next.setUrl(*target);
            if (response.statusCode() == 303 && next.httpMethod() != "HEAD") {
                next.setHttpMethod("GET");
                next.setHttpBody({});
            }
            askToSend(next, &response);
            return;
        }
    }
    auto delegate = delegateOrCancel();
    if (!delegate) return;
    response_ = response;
    if (mayBeCached(current_, response)) cacheBody_.emplace();
    delegate->connectionDidReceiveResponse(*this, response);
}

void UrlConnection::loaderDidReceiveData(std::string_view data) {
    if (!response_) return;  // no body before a head
    auto self = retained(this);
    auto delegate = delegateOrCancel();
    if (!delegate) return;
    if (cacheBody_) cacheBody_->append(data);
    delegate->connectionDidReceiveData(*this, data);
}

void UrlConnection::loaderDidFinish() {
    auto self = retained(this);
    if (cacheBody_) {
        UrlCache::shared().storeCachedResponseForRequest(
            std::make_shared<CachedUrlResponse>(*response_, std::move(*cacheBody_)), current_);
    }
    auto delegate = delegate_.lock();
    finish();
    if (delegate) delegate->connectionDidFinishLoading(*this);
}

void UrlConnection::loaderDidFail(std::shared_ptr<const Error> error) {
    auto self = retained(this);
    auto delegate = delegate_.lock();
    finish();
    if (delegate) delegate->connectionDidFailWithError(*this, std::move(error));
}

void UrlConnection::finish() {
    stage_ = Stage::Done;
    dropLoader();
    cacheBody_.reset();
}

}  // namespace kit

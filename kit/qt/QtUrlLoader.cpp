#include "kit/qt/QtUrlLoader.h"

#include "kit/RunLoop.h"
#include "kit/UrlError.h"
#include "kit/port/Platform.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QUrl>

#include <cmath>

namespace kit::qt {

namespace {
bool isHttpLevelError(QNetworkReply::NetworkError error) {
    // Content and server errors are HTTP statuses that came with a whole answer.
    int code = static_cast<int>(error);
    return error == QNetworkReply::NoError || (code >= 200 && code < 300) || (code >= 400 && code < 500);
}

int urlErrorCode(QNetworkReply::NetworkError error) {
    switch (error) {
        case QNetworkReply::ConnectionRefusedError:
            return UrlError::kCannotConnectToHost;
        case QNetworkReply::HostNotFoundError:
            return UrlError::kCannotFindHost;
        // The transfer time-out aborts the reply as if it had been cancelled; we never abort it
        // ourselves without disconnecting first, so a cancel seen here is the time-out.
        case QNetworkReply::TimeoutError:
        case QNetworkReply::OperationCanceledError:
            return UrlError::kTimedOut;
        case QNetworkReply::RemoteHostClosedError:
        case QNetworkReply::TemporaryNetworkFailureError:
        case QNetworkReply::NetworkSessionFailedError:
            return UrlError::kNetworkConnectionLost;
        case QNetworkReply::SslHandshakeFailedError:
            return UrlError::kSecureConnectionFailed;
        case QNetworkReply::TooManyRedirectsError:
            return UrlError::kTooManyRedirects;
        case QNetworkReply::ProtocolUnknownError:
            return UrlError::kUnsupportedUrl;
        case QNetworkReply::ProtocolFailure:
            return UrlError::kBadServerResponse;
        default:
            return UrlError::kUnknown;
    }
}
}  // namespace

QtUrlLoader::QtUrlLoader(QNetworkAccessManager& manager, const UrlRequest& request, UrlLoader::Client& client)
    : manager_(manager), request_(request), client_(client) {}

QtUrlLoader::~QtUrlLoader() {
    cancel();
}

void QtUrlLoader::start() {
    if (reply_ || ended_) return;
    const std::string& text = request_.url().absoluteString();
    QNetworkRequest request(QUrl::fromEncoded(QByteArray::fromStdString(text), QUrl::StrictMode));
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    if (!request_.httpShouldHandleCookies()) {
        request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
        request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    }
    if (request_.timeoutInterval() > 0)
        request.setTransferTimeout(static_cast<int>(std::ceil(request_.timeoutInterval() * 1000)));
    for (const auto& [name, value] : request_.allHttpHeaderFields().fields())
        request.setRawHeader(QByteArray::fromStdString(name), QByteArray::fromStdString(value));

    const std::string& method = request_.httpMethod();
    if (method == "GET")
        reply_ = manager_.get(request);
    else
        reply_ = manager_.sendCustomRequest(request, QByteArray::fromStdString(method),
                                            QByteArray::fromStdString(request_.httpBody()));
    QObject::connect(reply_, &QNetworkReply::metaDataChanged, reply_, [this] { headArrived(); });
    QObject::connect(reply_, &QNetworkReply::readyRead, reply_, [this] { bodyArrived(); });
    QObject::connect(reply_, &QNetworkReply::finished, reply_, [this] { replyFinished(); });
}

void QtUrlLoader::cancel() {
    ended_ = true;
    reports_.clear();
    deliveries_.cancelAll();
    if (reply_) {
        QObject::disconnect(reply_, nullptr, nullptr, nullptr);
        reply_->abort();
    }
    releaseReply();
}

void QtUrlLoader::releaseReply() {
    // Deleted later: we may be inside one of its signals.
    if (reply_) reply_->deleteLater();
    reply_ = nullptr;
}

void QtUrlLoader::headArrived() {
    if (headSent_ || !reply_) return;
    QVariant status = reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (!status.isValid()) return;
    headSent_ = true;
    HttpHeaders headers;
    for (const auto& [name, value] : reply_->rawHeaderPairs())
        headers.add(name.toStdString(), value.toStdString());
    UrlResponse response(request_.url(), status.toInt(), std::move(headers));
    queue([this, response] { client_.loaderDidReceiveResponse(response); });
}

void QtUrlLoader::bodyArrived() {
    if (!reply_) return;
    headArrived();
    QByteArray bytes = reply_->readAll();
    if (bytes.isEmpty()) return;
    queue([this, data = bytes.toStdString()] { client_.loaderDidReceiveData(data); });
}

void QtUrlLoader::replyFinished() {
    if (!reply_) return;
    QNetworkReply::NetworkError error = reply_->error();
    bool answered = reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid();
    if (answered && isHttpLevelError(error)) {
        bodyArrived();
        queue([this] { client_.loaderDidFinish(); });
    } else {
        auto failure = errorOf(*reply_);
        queue([this, failure] { client_.loaderDidFail(failure); });
    }
    QObject::disconnect(reply_, nullptr, nullptr, nullptr);
    releaseReply();
}

std::shared_ptr<const Error> QtUrlLoader::errorOf(QNetworkReply& reply) const {
    int code = urlErrorCode(reply.error());
    std::string description = code == UrlError::kUnknown ? reply.errorString().toStdString() : std::string();
    return UrlError::make(code, request_.url().absoluteString(), description);
}

void QtUrlLoader::queue(std::function<void()> report) {
    reports_.push_back(std::move(report));
    deliveries_.post([this] { deliverNext(); });
}

void QtUrlLoader::deliverNext() {
    if (reports_.empty()) return;
    auto report = std::move(reports_.front());
    reports_.pop_front();
    // The client may cancel or destroy this loader in the report: touch nothing afterwards.
    report();
}

}  // namespace kit::qt

#include "kit/qt/QtWebPage.h"

#include "kit/Error.h"
#include "kit/RunLoop.h"
#include "kit/WebView.h"
#include "kit/port/PortKey.h"

#include <QSizeF>
#include <QWebEngineHistory>
#include <QWebEngineLoadingInfo>
#include <QWebEngineProfile>
#include <QWebEngineUrlRequestJob>
#include <QWebEngineUrlScheme>
#include <QWebEngineUrlSchemeHandler>

#include <fmt/format.h>

#include <unistd.h>
#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace kit::qt {

namespace {

constexpr const char* kPrivateSchemes[] = {"pelko", "vmsg"};

// A link navigation this soon after the user pressed on the page is theirs; later ones (and those
// with no press at all) were started by the page's scripts.
constexpr double kTouchToNavigation = 1.0;

// Navigations to the private schemes are refused by the delegates; should one be let through, it
// fails here rather than going to the desktop.
class RefusingSchemeHandler : public QWebEngineUrlSchemeHandler {
public:
    void requestStarted(QWebEngineUrlRequestJob* job) override {
        job->fail(QWebEngineUrlRequestJob::RequestDenied);
    }
};

void installSchemeHandlers(QWebEngineProfile* profile) {
    static RefusingSchemeHandler handler;
    for (const char* scheme : kPrivateSchemes)
        if (!profile->urlSchemeHandler(scheme)) profile->installUrlSchemeHandler(scheme, &handler);
}

QUrl toQUrl(const Url& url) {
    return QUrl(QString::fromStdString(url.absoluteString()), QUrl::StrictMode);
}

std::optional<Url> fromQUrl(const QUrl& url) {
    return Url::parse(url.toString(QUrl::FullyEncoded).toStdString());
}

// A script's value as text: numbers as the page would print them, nothing for the rest.
std::string scriptResultText(const QVariant& value) {
    switch (value.typeId()) {
        case QMetaType::QString:
            return value.toString().toStdString();
        case QMetaType::Bool:
            return value.toBool() ? "true" : "false";
        case QMetaType::Int:
        case QMetaType::LongLong:
        case QMetaType::UInt:
        case QMetaType::ULongLong:
            return value.toString().toStdString();
        case QMetaType::Double:
            return fmt::format("{}", value.toDouble());
        default:
            return {};
    }
}

}  // namespace

void QtWebPage::prepareEngine() {
    static bool prepared = false;
    if (prepared) return;
    prepared = true;
    if (geteuid() == 0) setenv("QTWEBENGINE_DISABLE_SANDBOX", "1", 0);
    for (const char* name : kPrivateSchemes) {
        QWebEngineUrlScheme scheme(name);
        // Kept as written: the commands' hosts, paths and queries reach the delegate unchanged.
        scheme.setSyntax(QWebEngineUrlScheme::Syntax::Path);
        QWebEngineUrlScheme::registerScheme(scheme);
    }
}

QtWebPage::QtWebPage(WebView& view) : QWebEnginePage(static_cast<QObject*>(nullptr)), WebPage(view) {
    installSchemeHandlers(profile());
    connect(this, &QWebEnginePage::loadingChanged, this, &QtWebPage::loadingDidChange);
    connect(this, &QWebEnginePage::contentsSizeChanged, this, &QtWebPage::fitContents);
    connect(this, &QWebEnginePage::renderProcessTerminated, this, &QtWebPage::rendererDidEnd);
}

QtWebPage::~QtWebPage() = default;

void QtWebPage::userDidTouch() {
    lastTouch_ = RunLoop::main().now();
}

void QtWebPage::loadHtmlString(const std::string& html, const std::optional<Url>& baseUrl) {
    htmlBaseUrl_ = baseUrl ? toQUrl(*baseUrl) : QUrl("about:blank");
    htmlLoadPending_ = true;
    setHtml(QString::fromStdString(html), baseUrl ? toQUrl(*baseUrl) : QUrl());
}

void QtWebPage::loadRequest(const Url& url) {
    load(toQUrl(url));
}

void QtWebPage::evaluateScript(const std::string& script, std::function<void(std::string)> completion) {
    // The engine answers from its own event; the answer runs as a turn of the run loop.
    runJavaScript(QString::fromStdString(script),
                  [completion = std::move(completion)](const QVariant& value) {
                      RunLoop::Turn turn(PortKey{});
                      completion(scriptResultText(value));
                  });
}

void QtWebPage::goBack() {
    triggerAction(Back);
}
void QtWebPage::goForward() {
    triggerAction(Forward);
}
void QtWebPage::reload() {
    triggerAction(Reload);
}
void QtWebPage::stopLoading() {
    triggerAction(Stop);
}
bool QtWebPage::canGoBack() const {
    return history()->canGoBack();
}
bool QtWebPage::canGoForward() const {
    return history()->canGoForward();
}

// Inline playback has no meaning on the desktop (video always plays in the page), and the engine
// detects no phone numbers or addresses. The engine's own user-gesture switch for playback is left
// alone: changing it sends its renderers preferences they reject, and every later page hangs.
// Only scaling to fit reaches the engine.
void QtWebPage::settingsDidChange() {
    if (!view().scalesPageToFit()) setZoomFactor(1.0);
    fitContents(contentsSize());
}

void QtWebPage::fitContents(const QSizeF& size) {
    if (!view().scalesPageToFit() || size.width() <= 0) return;
    double natural = size.width() / zoomFactor();
    double factor = std::clamp(view().bounds().width() / natural, 0.25, 1.0);
    if (std::abs(factor - zoomFactor()) > 0.01) setZoomFactor(factor);
}

WebViewNavigationType QtWebPage::navigationType(NavigationType type) const {
    switch (type) {
        case NavigationTypeLinkClicked: {
            bool touched = lastTouch_ >= 0 && RunLoop::main().now() - lastTouch_ <= kTouchToNavigation;
            return touched ? WebViewNavigationType::LinkClicked : WebViewNavigationType::Other;
        }
        case NavigationTypeFormSubmitted:
            return WebViewNavigationType::FormSubmitted;
        case NavigationTypeBackForward:
            return WebViewNavigationType::BackForward;
        case NavigationTypeReload:
            return WebViewNavigationType::Reload;
        default:  // typed (the app's own loads), redirects, the rest
            return WebViewNavigationType::Other;
    }
}

std::optional<Url> QtWebPage::viewUrl(const QUrl& url) const {
    if (url.scheme() == QLatin1String("data") && htmlBaseUrl_) return fromQUrl(*htmlBaseUrl_);
    if (url.isEmpty()) return std::nullopt;
    return fromQUrl(url);
}

bool QtWebPage::acceptNavigationRequest(const QUrl& url, NavigationType type, bool isMainFrame) {
    RunLoop::Turn turn(PortKey{});
    QUrl asked = url;
    WebViewNavigationType kind = navigationType(type);
    bool stringPage = isMainFrame && htmlLoadPending_ && url.scheme() == QLatin1String("data");
    if (stringPage) {
        // A string page looks like a load of its base URL.
        htmlLoadPending_ = false;
        asked = *htmlBaseUrl_;
        kind = WebViewNavigationType::Other;
    }
    auto reported = fromQUrl(asked);
    bool allowed = !reported || view().pageShouldStartLoad(PortKey{}, *reported, kind);
    if (!isMainFrame) return allowed;
    acceptedUrl_ = allowed ? std::optional<QUrl>(url) : std::nullopt;
    if (allowed && !stringPage) htmlBaseUrl_.reset();
    return allowed;
}

// A page whose renderer died never finishes: its load fails.
void QtWebPage::rendererDidEnd(RenderProcessTerminationStatus status, int exitCode) {
    PortKey key;
    RunLoop::Turn turn(key);
    auto self = retained(&view());
    if (!std::exchange(reporting_, false)) return;
    view().pageDidFailLoad(
        key, Error::make("WebViewErrorDomain", exitCode,
                         {{Error::kLocalizedDescriptionKey,
                           fmt::format("The page's renderer ended (status {})", int(status))}}));
}

void QtWebPage::loadingDidChange(const QWebEngineLoadingInfo& info) {
    PortKey key;
    RunLoop::Turn turn(key);
    auto self = retained(&view());
    switch (info.status()) {
        case QWebEngineLoadingInfo::LoadStartedStatus:
            // The engine starts (and at once stops) even the loads the delegate refused.
            reporting_ = acceptedUrl_ && *acceptedUrl_ == info.url();
            if (reporting_) {
                if (auto url = viewUrl(info.url())) view().pageDidStartLoad(key, *url);
            }
            break;
        case QWebEngineLoadingInfo::LoadSucceededStatus:
            if (std::exchange(reporting_, false)) view().pageDidFinishLoad(key, viewUrl(url()));
            break;
        case QWebEngineLoadingInfo::LoadStoppedStatus:
        case QWebEngineLoadingInfo::LoadFailedStatus:
            if (!std::exchange(reporting_, false)) break;
            // An HTTP error page is still a page.
            if (info.errorDomain() == QWebEngineLoadingInfo::HttpStatusCodeDomain) {
                view().pageDidFinishLoad(key, viewUrl(url()));
                break;
            }
            view().pageDidFailLoad(
                key, Error::make("WebViewErrorDomain", info.errorCode(),
                                 {{Error::kLocalizedDescriptionKey, info.errorString().toStdString()}}));
            break;
    }
}

}  // namespace kit::qt

#include "kit/qt/QtWebViewPeer.h"

#include "kit/RunLoop.h"
#include "kit/WebView.h"
#include "kit/Window.h"
#include "kit/port/PortKey.h"
#include "kit/qt/QtWebPage.h"

#include <QApplication>
#include <QMouseEvent>
#include <QWebEngineView>

namespace kit::qt {

QtWebViewPeer::QtWebViewPeer(WebView& view, QWidget* parent)
    : QtViewPeer(view, parent), webView_(view), engineView_(new QWebEngineView(this)) {
    if (auto* page = dynamic_cast<QtWebPage*>(view.page(PortKey{}))) engineView_->setPage(page);
    engineView_->setGeometry(rect());
    showBackground();
    engineView_->show();
}

// The page is not the engine widget's: it stays with the web view.
QtWebViewPeer::~QtWebViewPeer() {
    engineView_->setPage(nullptr);
}

void QtWebViewPeer::viewDidChange(Change change) {
    QtViewPeer::viewDidChange(change);
    if (change == Change::Frame) engineView_->setGeometry(rect());
    if (change == Change::BackgroundColor) showBackground();
}

// A clear web view lets its superview show through the page's own background.
void QtWebViewPeer::showBackground() {
    if (auto* page = engineView_->page()) page->setBackgroundColor(toQColor(webView_.backgroundColor()));
}

QtWebViewPeer* QtWebViewPeer::pageAt(Window& window, QPointF point) {
    RunLoop::Turn turn(PortKey{});
    const Event event{EventType::Touches, RunLoop::main().now()};
    auto hit = window.hitTest({point.x(), point.y()}, &event);
    auto* webView = dynamic_cast<WebView*>(hit.get());
    auto* peer = webView ? dynamic_cast<QtWebViewPeer*>(webView->peer(PortKey{})) : nullptr;
    if (!peer) return nullptr;
    if (auto* page = dynamic_cast<QtWebPage*>(webView->page(PortKey{}))) page->userDidTouch();
    return peer;
}

void QtWebViewPeer::forwardMouse(QWidget& from, QMouseEvent& event) {
    // The engine takes input on its render widget, which it makes once the first page shows.
    QWidget* target = engineView_->focusProxy() ? engineView_->focusProxy() : engineView_;
    QPointF local = target->mapFrom(&from, event.position());
    QMouseEvent copy(event.type(), local, target->mapToGlobal(local), event.button(), event.buttons(),
                     event.modifiers());
    QApplication::sendEvent(target, &copy);
}

}  // namespace kit::qt

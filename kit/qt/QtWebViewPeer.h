#pragma once

#include "kit/qt/QtViewPeer.h"

class QMouseEvent;
class QWebEngineView;

namespace kit {
class Window;
class WebView;
}  // namespace kit

namespace kit::qt {

// Shows a web view's page (QtWebPage) in an engine widget that fills the view. The page outlives
// the peer. Mouse input reaches the page through the window peer, which asks the model first
// (routeMouse), so the web view hears every touch before the page does.
class QtWebViewPeer : public QtViewPeer {
public:
    QtWebViewPeer(WebView& view, QWidget* parent);
    ~QtWebViewPeer() override;

    void viewDidChange(Change change) override;

    // A press at `point` (window coordinates) that the model hit-tests to a web view on screen
    // gives that view's peer, which then takes the press and the rest of it; otherwise null.
    static QtWebViewPeer* pageAt(Window& window, QPointF point);
    // Hands a mouse event of the window's widget to the page, in the page's own coordinates.
    void forwardMouse(QWidget& from, QMouseEvent& event);

private:
    void showBackground();

    WebView& webView_;
    QWebEngineView* engineView_;
};

}  // namespace kit::qt

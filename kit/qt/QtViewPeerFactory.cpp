#include "kit/qt/QtViewPeerFactory.h"

#include "kit/WebView.h"
#include "kit/Window.h"
#include "kit/port/PortKey.h"
#include "kit/qt/QtViewPeer.h"
#include "kit/qt/QtWebViewPeer.h"
#include "kit/qt/QtWindowPeer.h"

namespace kit::qt {

std::unique_ptr<ViewPeer> QtViewPeerFactory::createPeer(View& view) {
    if (auto* window = dynamic_cast<Window*>(&view)) return std::make_unique<QtWindowPeer>(*window);
    auto superview = view.superview();
    auto* parent = superview ? dynamic_cast<QtViewPeer*>(superview->peer(PortKey{})) : nullptr;
    if (!parent) return nullptr;
    if (auto* webView = dynamic_cast<WebView*>(&view))
        return std::make_unique<QtWebViewPeer>(*webView, parent);
    return std::make_unique<QtViewPeer>(view, parent);
}

}  // namespace kit::qt

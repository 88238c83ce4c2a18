#pragma once

#include "ads/View/ZEBWebViewPrivate.h"
#include "kit/WebView.h"

#include <memory>
#include <string>

// The web view that creatives run in. Its state lives in a ZEBWebViewPrivate in the private-object
// table, made with the view and removed when it goes.
class ZEBWebView : public kit::WebView {
public:
    explicit ZEBWebView(kit::Rect frame = {});
    ~ZEBWebView() override;

    std::shared_ptr<ZEBWebViewPrivate> vars() const;

    // The ad look: clipped, pages scaled to fit, stretching with the superview, see-through, no data
    // detectors, media inline and free to play.
    void reset();

    bool touched() const;
    void setTouched(bool touched);
    // Every hit test on behalf of a touch marks the view touched: the banner tells the user's
    // clicks from a script's navigations by it.
    std::shared_ptr<kit::View> hitTest(kit::Point point, const kit::Event* event) override;

    // Lending the view to a full-screen screen and taking it back: frame, superview and delegate.
    void saveState();
    void restoreState();

    // Tells the creative the interface turned (orientations 1 to 4, each change once).
    void didRotateToOrientation(int orientation);
    // Posts an SDK event ("onshow", "expanding", ...) to the creative; dropped while a page loads.
    void notifyOfSdkEvent(const std::string& event);
};

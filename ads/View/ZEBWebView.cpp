#include "ads/View/ZEBWebView.h"

#include "ads/Notification/ZEBNotificationCenter.h"
#include "ads/Request/ZEBRequest.h"
#include "ads/Utility/ZEBIdentifierUtilities.h"
#include "ads/Utility/ZEBPrivateUtilities.h"
#include "kit/Application.h"

#include <fmt/format.h>

namespace {
constexpr const char* kOrientationScript =
    "window.__defineGetter__('orientation',function(){{return {};}});(function(){{var event = "
    "document.createEvent('Events');event.initEvent('orientationchange', true, "
    "false);window.dispatchEvent(event);"
    "}})();";

int angleForOrientation(int orientation) {
    switch (orientation) {
        case kit::InterfaceOrientation::PortraitUpsideDown:
            return 180;
        case kit::InterfaceOrientation::LandscapeRight:
            return 90;
        case kit::InterfaceOrientation::LandscapeLeft:
            return -90;
        default:
            return 0;
    }
}
}  // namespace

ZEBWebView::ZEBWebView(kit::Rect frame) : kit::WebView(frame) {
    ZEBPrivateUtilities::setPrivateObjectForKey(std::make_shared<ZEBWebViewPrivate>(), this);
    reset();
}

ZEBWebView::~ZEBWebView() {
    ZEBPrivateUtilities::removePrivateObjectForKey(this);
}

std::shared_ptr<ZEBWebViewPrivate> ZEBWebView::vars() const {
    return ZEBPrivateUtilities::privateObjectForKeyAs<ZEBWebViewPrivate>(this);
}

// No wireless media routes exist on this platform, so there is no such setting to turn on; scrolling
// and bouncing are left as they are.
void ZEBWebView::reset() {
    setClipsToBounds(true);
    setScalesPageToFit(true);
    setAutoresizingMask(kit::Autoresizing::FlexibleWidth | kit::Autoresizing::FlexibleHeight);
    setOpaque(false);
    setBackgroundColor(kit::Color::clear());
    setDataDetectorTypes(kit::DataDetectorTypes::None);
    setAllowsInlineMediaPlayback(true);
    setMediaPlaybackRequiresUserAction(false);
}

bool ZEBWebView::touched() const {
    return vars()->touched;
}

void ZEBWebView::setTouched(bool touched) {
    vars()->touched = touched;
}

std::shared_ptr<kit::View> ZEBWebView::hitTest(kit::Point point, const kit::Event* event) {
    if (event && event->type == kit::EventType::Touches) setTouched(true);
    return kit::WebView::hitTest(point, event);
}

void ZEBWebView::saveState() {
    auto state = vars();
    state->savedFrame = frame();
    state->savedSuperview = superview();
    state->savedDelegate = delegate();
    state->savedState = true;
}

void ZEBWebView::restoreState() {
    auto state = vars();
    if (!state->savedState) return;
    auto self = retained(this);
    removeFromSuperview();
    setFrame(state->savedFrame);
    state->savedFrame = {};
    if (state->savedSuperview) state->savedSuperview->addSubview(self);
    state->savedSuperview.reset();
    setDelegate(state->savedDelegate);
    state->savedDelegate.reset();
    state->savedState = false;
}

void ZEBWebView::didRotateToOrientation(int orientation) {
    if (orientation < kit::InterfaceOrientation::Portrait ||
        orientation > kit::InterfaceOrientation::LandscapeLeft)
        return;
    auto state = vars();
    if (orientation == state->orientation) return;
    state->orientation = orientation;
    evaluateScript(fmt::format(kOrientationScript, angleForOrientation(orientation)));
}

void ZEBWebView::notifyOfSdkEvent(const std::string& event) {
    if (isLoading()) return;
    kit::Value::Map userInfo{{"version", ZEBRequest::sdkVersion()},
                             {"device", ZEBIdentifierUtilities::sharedInstance().deviceSubmodel()}};
    ZEBNotificationCenter::defaultCenter().postJSNotificationUserInfoWebView(event, userInfo, this);
}

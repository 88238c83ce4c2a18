#pragma once

#include "kit/Geometry.h"
#include "kit/Object.h"
#include "kit/View.h"
#include "kit/WebViewDelegate.h"

#include <memory>

// The working state of a ZEBWebView, kept in the private-object table under the web view.
class ZEBWebViewPrivate : public kit::Object {
public:
    ~ZEBWebViewPrivate() override;

    // What saveState found, held while the web view is lent to a full-screen screen.
    std::shared_ptr<kit::WebViewDelegate> savedDelegate;
    std::shared_ptr<kit::View> savedSuperview;
    kit::Rect savedFrame;
    bool savedState = false;
    // The interface orientation last reported to the creative; 0 before the first report.
    int orientation = 0;
    // A touch reached the web view.
    bool touched = false;
};

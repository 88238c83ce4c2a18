#pragma once

#include "kit/qt/QtViewPeer.h"

#include <QPointer>

namespace kit {
class Window;
}

namespace kit::qt {

// The top-level widget of a model window: the device's screen. Mouse and touch input on it
// becomes the window's model touches.
class QtWindowPeer : public QtViewPeer {
public:
    explicit QtWindowPeer(Window& window);
    ~QtWindowPeer() override;

    void viewDidChange(Change change) override;

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    Window& window_;
    bool touching_ = false;
    // The page that took the current press, if one did.
    QPointer<class QtWebViewPeer> pressedPage_;
};

}  // namespace kit::qt

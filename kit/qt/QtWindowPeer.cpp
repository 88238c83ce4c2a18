#include "kit/qt/QtWindowPeer.h"

#include "kit/Bundle.h"
#include "kit/RunLoop.h"
#include "kit/Window.h"
#include "kit/port/PortKey.h"
#include "kit/qt/QtWebViewPeer.h"

#include <QCloseEvent>
#include <QMouseEvent>

#include <utility>

namespace kit::qt {

QtWindowPeer::QtWindowPeer(Window& window) : QtViewPeer(window, nullptr), window_(window) {
    setWindowTitle(QString::fromStdString(Bundle::main().name()));
    Rect frame = window.frame();
    setFixedSize(static_cast<int>(frame.width()), static_cast<int>(frame.height()));
    // Touch screens deliver touches as mouse events too; one finger is all the model knows.
    setAttribute(Qt::WA_AcceptTouchEvents, false);
    setVisible(!window.isHidden());
}

QtWindowPeer::~QtWindowPeer() = default;

void QtWindowPeer::viewDidChange(Change change) {
    if (change == Change::Frame) {
        Rect frame = window_.frame();
        setFixedSize(static_cast<int>(frame.width()), static_cast<int>(frame.height()));
        return;
    }
    QtViewPeer::viewDidChange(change);
}

void QtWindowPeer::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || touching_) return;
    touching_ = true;
    QPointF p = event->position();
    // Pages take their presses themselves, once the model has seen them.
    if ((pressedPage_ = QtWebViewPeer::pageAt(window_, p))) return pressedPage_->forwardMouse(*this, *event);
    window_.touchDown(PortKey{}, {p.x(), p.y()});
}

void QtWindowPeer::mouseMoveEvent(QMouseEvent* event) {
    if (!touching_) return;
    if (pressedPage_) return pressedPage_->forwardMouse(*this, *event);
    QPointF p = event->position();
    window_.touchMoved(PortKey{}, {p.x(), p.y()});
}

void QtWindowPeer::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !touching_) return;
    touching_ = false;
    if (auto page = std::exchange(pressedPage_, nullptr)) return page->forwardMouse(*this, *event);
    QPointF p = event->position();
    window_.touchUp(PortKey{}, {p.x(), p.y()});
}

// Closing the device's screen ends the application.
void QtWindowPeer::closeEvent(QCloseEvent* event) {
    event->accept();
    RunLoop::main().quit(0);
}

}  // namespace kit::qt

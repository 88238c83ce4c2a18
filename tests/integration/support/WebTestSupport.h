#pragma once

// What the web view's integration tests share: running the real run loop until something happened,
// and clicks as the window system sends them.
#include "kit/RunLoop.h"
#include "kit/Window.h"
#include "kit/port/PortKey.h"
#include "kit/port/ViewPeer.h"
#include "tests/integration/support/QtTestApplication.h"

#include <QApplication>
#include <QMouseEvent>
#include <QWidget>

#include <functional>
#include <string>

namespace webtest {

// Runs the real run loop until `done` holds; false when `limit` seconds pass first (a guard, not
// a measurement).
inline bool runUntil(const std::function<bool()>& done, double limit = 20) {
    bool reached = false;
    double deadline = kit::RunLoop::main().now() + limit;
    std::function<void()> poll = [&] {
        if (done()) {
            reached = true;
            kit::RunLoop::main().quit(0);
        } else if (kit::RunLoop::main().now() > deadline) {
            kit::RunLoop::main().quit(1);
        } else {
            kit::RunLoop::main().postAfter(0.005, poll);
        }
    };
    kit::RunLoop::main().post(poll);
    kit::RunLoop::main().run();
    return reached;
}

// A press and release of the left button on the window's widget, as the window system sends them.
inline void click(kit::Window& window, double x, double y) {
    QWidget* widget = dynamic_cast<QWidget*>(window.peer(kit::PortKey{}));
    QPointF p(x, y);
    QMouseEvent press(QEvent::MouseButtonPress, p, widget->mapToGlobal(p), Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QApplication::sendEvent(widget, &press);
    QMouseEvent release(QEvent::MouseButtonRelease, p, widget->mapToGlobal(p), Qt::LeftButton, Qt::NoButton,
                        Qt::NoModifier);
    QApplication::sendEvent(widget, &release);
}

}  // namespace webtest

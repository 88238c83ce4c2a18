#pragma once

// What the web view's integration tests share: a loopback HTTP server, and running the real run
// loop until something happened.
#include "kit/RunLoop.h"
#include "kit/Window.h"
#include "tests/integration/support/QtTestApplication.h"

#include <QApplication>
#include <QMouseEvent>
#include <QWidget>

#include <httplib.h>

#include <functional>
#include <string>
#include <thread>

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
    QWidget* widget = dynamic_cast<QWidget*>(window.peer());
    QPointF p(x, y);
    QMouseEvent press(QEvent::MouseButtonPress, p, widget->mapToGlobal(p), Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QApplication::sendEvent(widget, &press);
    QMouseEvent release(QEvent::MouseButtonRelease, p, widget->mapToGlobal(p), Qt::LeftButton, Qt::NoButton,
                        Qt::NoModifier);
    QApplication::sendEvent(widget, &release);
}

// An HTTP server on a loopback port of its own, serving on its own thread until it goes.
class LoopbackServer {
public:
    LoopbackServer() {
        // Idle keep-alive connections end soon, so that stopping does not wait on them.
        server_.set_keep_alive_timeout(0);
        port_ = server_.bind_to_any_port("127.0.0.1");
        thread_ = std::thread([this] { server_.listen_after_bind(); });
    }
    ~LoopbackServer() {
        server_.stop();
        thread_.join();
    }
    httplib::Server& server() { return server_; }
    std::string url(const std::string& path) const {
        return "http://127.0.0.1:" + std::to_string(port_) + path;
    }

private:
    httplib::Server server_;
    int port_ = 0;
    std::thread thread_;
};

}  // namespace webtest

#include "kit/qt/QtRunLoop.h"

#include "kit/RunLoop.h"
#include "kit/port/PortKey.h"

#include <QCoreApplication>
#include <QMetaObject>

#include <chrono>
#include <cmath>

namespace kit::qt {

QtRunLoop::QtRunLoop() : mainThread_(std::this_thread::get_id()) {
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer_, &QTimer::timeout, this, [] { RunLoop::main().runDue(PortKey{}); });
}

QtRunLoop::~QtRunLoop() = default;

double QtRunLoop::now() const {
    // The monotonic clock counts from boot, so it is always well above zero.
    auto since = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(since).count();
}

void QtRunLoop::wakeAt(double deadline) {
    double wait = deadline - now();
    int ms = wait <= 0 ? 0 : static_cast<int>(std::ceil(wait * 1000));
    if (timer_.isActive() && timer_.remainingTime() <= ms) return;  // an earlier wake-up stands
    timer_.start(ms);
}

int QtRunLoop::exec() {
    return QCoreApplication::exec();
}

void QtRunLoop::quit(int code) {
    QCoreApplication::exit(code);
}

bool QtRunLoop::isMainThread() const {
    return std::this_thread::get_id() == mainThread_;
}

void QtRunLoop::postFromOtherThread(std::function<void()> call) {
    QMetaObject::invokeMethod(
        this,
        [call = std::move(call)] {
            RunLoop::Turn turn(PortKey{});
            call();
        },
        Qt::QueuedConnection);
}

void QtRunLoop::runOnMainAndWait(const std::function<void()>& call) {
    QMetaObject::invokeMethod(
        this,
        [&call] {
            RunLoop::Turn turn(PortKey{});
            call();
        },
        Qt::BlockingQueuedConnection);
}

}  // namespace kit::qt

#pragma once

#include "kit/port/RunLoopImplementation.h"

#include <QObject>
#include <QTimer>

#include <thread>

namespace kit::qt {

// The run loop on Qt's event loop: one precise single-shot QTimer wakes the kit queue at its next
// deadline; calls from other threads cross over as queued (or blocking queued) invocations.
class QtRunLoop : public QObject, public RunLoopImplementation {
public:
    QtRunLoop();
    ~QtRunLoop() override;

    double now() const override;
    void wakeAt(double deadline) override;
    int exec() override;
    void quit(int code) override;
    bool isMainThread() const override;
    void postFromOtherThread(std::function<void()> call) override;
    void runOnMainAndWait(const std::function<void()>& call) override;

private:
    QTimer timer_;
    std::thread::id mainThread_;
};

}  // namespace kit::qt

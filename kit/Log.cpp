#include "kit/Log.h"

#include <syslog.h>

#include <cstdio>
#include <mutex>

namespace kit {
namespace {

// Lines may come from any thread (a delegate event raised off the main thread, say).
std::mutex gMutex;
Log::Capture* gCapture = nullptr;

}  // namespace

void Log::write(std::string_view line) {
    std::lock_guard lock(gMutex);
    if (gCapture) {
        gCapture->lines_.emplace_back(line);
        return;
    }
    std::fprintf(stderr, "%.*s\n", static_cast<int>(line.size()), line.data());
    syslog(LOG_NOTICE, "%.*s", static_cast<int>(line.size()), line.data());
}

Log::Capture::Capture() {
    std::lock_guard lock(gMutex);
    previous_ = gCapture;
    gCapture = this;
}

Log::Capture::~Capture() {
    std::lock_guard lock(gMutex);
    gCapture = previous_;
}

std::vector<std::string> Log::Capture::lines() const {
    std::lock_guard lock(gMutex);
    return lines_;
}

bool Log::Capture::contains(std::string_view text) const {
    std::lock_guard lock(gMutex);
    for (const auto& l : lines_)
        if (l.find(text) != std::string::npos) return true;
    return false;
}

void Log::Capture::clear() {
    std::lock_guard lock(gMutex);
    lines_.clear();
}

}  // namespace kit

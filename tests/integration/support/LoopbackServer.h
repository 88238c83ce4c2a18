#pragma once

#include <httplib.h>

#include <mutex>
#include <string>
#include <thread>

namespace qttest {

// An HTTP server on a free loopback port, serving on a thread of its own until it stops or goes,
// and counting the requests that reach it.
class LoopbackServer {
public:
    LoopbackServer() {
        server_.set_logger([this](const httplib::Request& request, const httplib::Response&) {
            std::lock_guard<std::mutex> lock(mutex_);
            ++hits_;
            lastHeaders_ = request.headers;
        });
        // Idle keep-alive connections end soon, so that stopping does not wait on them.
        server_.set_keep_alive_timeout(0);
        // Bound and listening from here on: connections wait in the backlog until the thread accepts.
        port_ = server_.bind_to_any_port("127.0.0.1");
        thread_ = std::thread([this] { server_.listen_after_bind(); });
        // A stop before the thread is listening would be missed and leave the join waiting for ever.
        while (port_ > 0 && !server_.is_running()) std::this_thread::yield();
    }
    ~LoopbackServer() { stop(); }
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    void stop() {
        server_.stop();
        if (thread_.joinable()) thread_.join();
    }

    httplib::Server& server() { return server_; }
    std::string url(const std::string& path) const {
        return "http://127.0.0.1:" + std::to_string(port_) + path;
    }
    int hits() {
        std::lock_guard<std::mutex> lock(mutex_);
        return hits_;
    }
    // A header of the latest request, empty when it had none.
    std::string lastHeader(const std::string& name) {
        std::lock_guard<std::mutex> lock(mutex_);
        auto it = lastHeaders_.find(name);
        return it == lastHeaders_.end() ? std::string() : it->second;
    }

private:
    httplib::Server server_;
    int port_ = 0;
    std::thread thread_;
    std::mutex mutex_;
    int hits_ = 0;
    httplib::Headers lastHeaders_;
};

}  // namespace qttest

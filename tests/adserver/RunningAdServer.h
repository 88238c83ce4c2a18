#pragma once

// A reference ad server for a test: on a free loopback port, with its own event store in a fresh
// folder that goes with it.
#include "adserver/AdServer.h"

#include <unistd.h>
#include <atomic>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

namespace adtest {

class RunningAdServer {
public:
    explicit RunningAdServer(SlotTable slots = SlotTable::builtIn(), double stallSeconds = 30) {
        static std::atomic<int> count{0};
        folder_ = std::filesystem::temp_directory_path() /
                  ("adserver-test-" + std::to_string(getpid()) + "-" + std::to_string(count++));
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directories(folder_);
        settings_.port = 0;
        settings_.dbPath = (folder_ / "events.db").string();
        settings_.slots = std::move(slots);
        settings_.stallSeconds = stallSeconds;
        restart();
    }
    ~RunningAdServer() {
        server_.reset();
        std::filesystem::remove_all(folder_);
    }

    // Stops (when running) and starts again on the same event store (and a new port).
    void restart() {
        server_.reset();
        std::string error;
        server_ = AdServer::create(settings_, &error);
        if (!server_) throw std::runtime_error(error);
        server_->start();
    }
    AdServer& server() { return *server_; }
    std::string url(const std::string& path) const { return server_->url(path); }
    std::string origin() const { return server_->url(""); }
    std::string dbPath() const { return settings_.dbPath; }

private:
    std::filesystem::path folder_;
    AdServer::Settings settings_;
    std::unique_ptr<AdServer> server_;
};

}  // namespace adtest

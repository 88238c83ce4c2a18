#pragma once

#include "adserver/CreativeLibrary.h"
#include "adserver/EventStore.h"
#include "adserver/Fault.h"
#include "adserver/SlotTable.h"

#include <atomic>
#include <ctime>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

namespace httplib {
class Server;
struct Request;
struct Response;
}  // namespace httplib

// The reference ad server: the support script, the ad endpoint with house creatives, mediation
// documents and no-fills, the click redirector and landing pages, tracking pings and mediation event
// reports (stored in an EventStore), faults on demand, and the dashboard with its JSON.
//
// Faults: a slot's "fault" applies to each of its ad answers; a request's own "fault" parameter (at
// the top of the ad URL's query, or inside its "extras" map, which is how a client's additional
// parameters arrive) applies to that answer alone, and so does "creative". The support script has
// its fault in the configuration, by setScriptFault(), or in its own query.
class AdServer {
public:
    struct Settings {
        std::string host = "127.0.0.1";
        // 0 serves on any free port.
        int port = 8480;
        std::string dbPath = "vantor-adserver.db";
        SlotTable slots = SlotTable::builtIn();
        // Gets one line per request; nothing is logged without it. Called from request threads, one
        // call at a time.
        std::function<void(const std::string&)> log;
        // How long a stalled answer holds its request (it lets go at once when the server stops).
        double stallSeconds = 30;
        // Request threads. Each open connection holds one, so this bounds the clients served at once.
        size_t threads = 128;
    };

    // Opens the event store and binds the port; none with *error set (one line) when either fails.
    static std::unique_ptr<AdServer> create(Settings settings, std::string* error);
    ~AdServer();
    AdServer(const AdServer&) = delete;
    AdServer& operator=(const AdServer&) = delete;

    int port() const { return port_; }
    // "http://127.0.0.1:<port>" followed by `path`.
    std::string url(std::string_view path = "/") const;

    // Serves on the calling thread until stop().
    void run();
    // Serves on a thread of its own.
    void start();
    // Ends serving (stalled answers included) and returns when run() has returned. From any thread.
    void stop();

    EventStore& events() { return *store_; }
    void setScriptFault(std::optional<Fault::Kind> fault);

private:
    explicit AdServer(Settings settings);
    void route();

    void serveDashboard(const httplib::Request& request, httplib::Response& response);
    void serveStats(const httplib::Request& request, httplib::Response& response);
    void serveEvents(const httplib::Request& request, httplib::Response& response);
    void serveScript(const httplib::Request& request, httplib::Response& response);
    void serveAd(const httplib::Request& request, httplib::Response& response);
    void serveClick(const httplib::Request& request, httplib::Response& response);
    void serveTracking(const httplib::Request& request, httplib::Response& response);
    void serveReport(const httplib::Request& request, httplib::Response& response, const std::string& kind);
    void serveHouseAd(const httplib::Request& request, httplib::Response& response);

    // Puts `fault` on the answer; `body` and `type` are what the answer would have been without it.
    void applyFault(Fault::Kind fault, const httplib::Request& request, httplib::Response& response,
                    const std::string& body, const std::string& type, const std::string& brokenBody);
    // Stores the event; false (and a 503 answer) when the store refused it.
    std::optional<int64_t> record(Event event, httplib::Response& response);
    // "http://host:port" as the client named the server (its Host header), when that is a plain host.
    std::string origin(const httplib::Request& request) const;
    std::string nextCreative(const Slot& slot);
    void logRequest(const httplib::Request& request, const httplib::Response& response);

    Settings settings_;
    std::unique_ptr<httplib::Server> http_;
    std::unique_ptr<EventStore> store_;
    int port_ = 0;
    // Last-Modified of the support script: it changes only when the server (and its slots) start anew.
    std::time_t scriptModified_ = 0;
    std::mutex scriptFaultMutex_;
    std::optional<Fault::Kind> scriptFault_;
    // Where each slot is in its rotation of creatives; made at start, one counter per slot.
    std::map<std::string, std::unique_ptr<std::atomic<uint64_t>>, std::less<>> rotation_;
    std::mutex logMutex_;
    std::atomic<bool> stopping_{false};
    std::atomic<bool> runEntered_{false};
    std::atomic<bool> runExited_{false};
    std::thread thread_;
};

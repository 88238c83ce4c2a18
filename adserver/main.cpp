// vantor-adserver: the reference ad server, run from the command line.
#include "adserver/AdServer.h"
#include "adserver/ServerOptions.h"

#include <fmt/format.h>

#include <pthread.h>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <mutex>
#include <thread>

int main(int argc, char** argv) {
    std::string error;
    auto options = ServerOptions::parse(std::vector<std::string>(argv + 1, argv + argc), &error);
    if (!options) {
        fmt::print(stderr, "vantor-adserver: {} (see --help)\n", error);
        return 2;
    }
    if (options->help) {
        fmt::print("{}", ServerOptions::usage());
        return 0;
    }
    AdServer::Settings settings;
    settings.port = options->port;
    settings.dbPath = options->db;
    if (options->config) {
        auto slots = SlotTable::withFile(*options->config, &error);
        if (!slots) {
            fmt::print(stderr, "vantor-adserver: {}\n", error);
            return 2;
        }
        settings.slots = std::move(*slots);
    }
    settings.log = [](const std::string& line) {
        std::fputs((line + "\n").c_str(), stdout);
        std::fflush(stdout);
    };

    // SIGINT and SIGTERM are taken by one thread that waits for them; every other thread (the
    // request threads are made later and inherit the mask) has them blocked.
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGINT);
    sigaddset(&stopSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);

    auto server = AdServer::create(std::move(settings), &error);
    if (!server) {
        fmt::print(stderr, "vantor-adserver: {}\n", error);
        return 1;
    }
    std::atomic<bool> signalled{false}, ended{false};
    std::thread waiter([&] {
        int signal = 0;
        sigwait(&stopSignals, &signal);
        if (!ended) {
            signalled = true;
            fmt::print("Stopping on {}\n", signal == SIGINT ? "SIGINT" : "SIGTERM");
            std::fflush(stdout);
        }
        server->stop();
    });
    fmt::print("Serving {} (dashboard; events in {})\n", server->url("/"), options->db);
    std::fflush(stdout);
    server->run();
    ended = true;
    // Serving can only end by a signal; should it end otherwise, the waiter is let go.
    if (!signalled) pthread_kill(waiter.native_handle(), SIGTERM);
    waiter.join();
    server.reset();
    fmt::print("Stopped\n");
    return signalled ? 0 : 1;
}

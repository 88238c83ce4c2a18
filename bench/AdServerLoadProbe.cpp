// The reference ad server's ad endpoint under load on loopback: 64 clients, each on its own
// keep-alive connection, asking for ads one after another with a realistic ad URL. Every answer
// includes storing the request in the event store. Prints requests per second and the latency
// percentiles of single requests.
#include "adserver/AdServer.h"
#include "adserver/QueryString.h"
#include "bench/Percentile.h"

#include <httplib.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kClients = 64;
constexpr double kWarmUpSeconds = 1;
constexpr double kMeasureSeconds = 5;

// An ad URL as the support script builds it from a phone's request parameters.
std::string adTarget() {
    return "/ad?" + QueryString::build({
                        {"ios_base_sdk", "6.4.2"},
                        {"app_name", "1.0.iphone.org.quiblo.soundboard"},
                        {"isu", "0123456789ABCDEF0123456789ABCDEF"},
                        {"platform", "Linux"},
                        {"submodel", "x86_64"},
                        {"hl", "en"},
                        {"u_audio", "1"},
                        {"u_so", "l"},
                        {"u_sd", "1"},
                        {"u_w", "480"},
                        {"u_h", "320"},
                        {"js", "quor-sdk-i-v5.0.5"},
                        {"net", "wi"},
                        {"kw", "[\"drums\",\"sound effects\"]"},
                        {"preqs", "12"},
                        {"session_id", "9223372036854775807"},
                        {"pcc", "1"},
                        {"prl", "143"},
                        {"ptime", "60312"},
                        {"slotname", "a1b2c3d4e5f6a7b"},
                        {"ad_frame", "{\"x\":80,\"y\":256,\"w\":320,\"h\":50}"},
                        {"ad_bounds", "{\"x\":0,\"y\":0,\"w\":320,\"h\":50}"},
                    });
}

struct Load {
    double requestsPerSecond = 0;
    std::vector<double> latencies;
    int failures = 0;
};

// Each client asks for `target` again and again on its own connection; answers in the warm-up are
// not counted.
Load load(const AdServer& server, const std::string& target) {
    const auto measureFrom = Clock::now() + std::chrono::duration<double>(kWarmUpSeconds);
    const auto end = measureFrom + std::chrono::duration<double>(kMeasureSeconds);
    std::atomic<int> failures{0};
    std::vector<std::vector<double>> latencies(kClients);
    std::vector<std::thread> clients;
    for (int c = 0; c < kClients; ++c) {
        clients.emplace_back([&, c] {
            httplib::Client client(server.url(""));
            client.set_keep_alive(true);
            client.set_tcp_nodelay(true);
            client.set_url_encode(false);
            while (true) {
                auto sent = Clock::now();
                if (sent >= end) break;
                auto answer = client.Get(target);
                // A request on a kept-alive connection that the server had just let go (it was idle
                // for a second while this thread waited for a core) is sent again, as browsers do.
                if (!answer) answer = client.Get(target);
                auto answered = Clock::now();
                if (!answer || answer->status != 200) ++failures;
                if (sent >= measureFrom)
                    latencies[c].push_back(
                        std::chrono::duration<double, std::milli>(answered - sent).count());
            }
        });
    }
    for (auto& client : clients) client.join();
    Load result;
    for (const auto& some : latencies)
        result.latencies.insert(result.latencies.end(), some.begin(), some.end());
    result.requestsPerSecond = double(result.latencies.size()) / kMeasureSeconds;
    result.failures = failures;
    return result;
}

void print(const char* what, const Load& load) {
    if (load.latencies.empty()) {
        std::printf("%s: no answers\n", what);
        return;
    }
    std::printf(
        "%s: %.0f requests/s, latency median %.2f ms, p90 %.2f ms, p99 %.2f ms, max %.2f ms (n %zu, "
        "failed %d)\n",
        what, load.requestsPerSecond, bench::percentile(load.latencies, 0.5),
        bench::percentile(load.latencies, 0.9), bench::percentile(load.latencies, 0.99),
        *std::max_element(load.latencies.begin(), load.latencies.end()), load.latencies.size(),
        load.failures);
}

}  // namespace

int main() {
    auto folder = std::filesystem::temp_directory_path() / ("adserver-bench-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder);
    AdServer::Settings settings;
    settings.port = 0;
    settings.dbPath = (folder / "events.db").string();
    std::string error;
    auto server = AdServer::create(settings, &error);
    if (!server) {
        std::fprintf(stderr, "adserver load probe: %s\n", error.c_str());
        return 1;
    }
    server->start();
    std::printf("reference ad server, %d keep-alive clients on loopback, %.0f s each:\n", kClients,
                kMeasureSeconds);
    Load ads = load(*server, adTarget());
    print("  ad endpoint (creative, request stored)", ads);
    // The same load on a page that stores nothing: what is left is the cost of the event store.
    Load pages = load(*server, "/landing/links");
    print("  landing page (nothing stored)        ", pages);
    server.reset();
    std::filesystem::remove_all(folder);
    return ads.failures == 0 && !ads.latencies.empty() ? 0 : 1;
}

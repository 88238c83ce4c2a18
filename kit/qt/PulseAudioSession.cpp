#include "kit/qt/PulseAudioSession.h"

#include "kit/Bundle.h"

#include <pulse/pulseaudio.h>

#include <chrono>
#include <memory>

namespace kit::qt {

namespace {

// Asked on the main thread for every ad request: a server that does not answer quickly counts as
// none rather than stalling the application.
constexpr auto kPatience = std::chrono::milliseconds(500);

struct Query {
    bool done = false;
    bool failed = false;
    std::string defaultSink;
    std::optional<std::string> route;
};

std::string routeName(const pa_sink_port_info& port) {
    switch (port.type) {
        case PA_DEVICE_PORT_TYPE_SPEAKER:
            return "Speaker";
        case PA_DEVICE_PORT_TYPE_HEADPHONES:
            return "Headphone";
        case PA_DEVICE_PORT_TYPE_HEADSET:
            return "Headset";
        default:
            break;
    }
    std::string name = port.name ? port.name : "";
    if (name.find("speaker") != std::string::npos) return "Speaker";
    if (name.find("headphone") != std::string::npos) return "Headphone";
    if (name.find("headset") != std::string::npos) return "Headset";
    return port.description ? port.description : name;
}

// Runs the loop until `finished` says so or patience runs out; false on time-out or loop failure.
template <class Finished>
bool runUntil(pa_mainloop* loop, std::chrono::steady_clock::time_point deadline, Finished finished) {
    while (!finished()) {
        auto left = std::chrono::duration_cast<std::chrono::microseconds>(deadline -
                                                                          std::chrono::steady_clock::now());
        if (left.count() <= 0) return false;
        if (pa_mainloop_prepare(loop, static_cast<int>(left.count())) < 0) return false;
        if (pa_mainloop_poll(loop) < 0) return false;
        if (pa_mainloop_dispatch(loop) < 0) return false;
    }
    return true;
}

}  // namespace

std::optional<std::string> PulseAudioSession::currentRoute() {
    auto deadline = std::chrono::steady_clock::now() + kPatience;
    std::unique_ptr<pa_mainloop, decltype(&pa_mainloop_free)> loop(pa_mainloop_new(), pa_mainloop_free);
    if (!loop) return std::nullopt;
    std::unique_ptr<pa_context, decltype(&pa_context_unref)> context(
        pa_context_new(pa_mainloop_get_api(loop.get()), Bundle::main().executableName().c_str()),
        pa_context_unref);
    if (!context) return std::nullopt;
    if (pa_context_connect(context.get(), nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) return std::nullopt;

    auto state = [&] { return pa_context_get_state(context.get()); };
    bool ready = runUntil(loop.get(), deadline,
                          [&] { return state() == PA_CONTEXT_READY || !PA_CONTEXT_IS_GOOD(state()); });
    if (!ready || state() != PA_CONTEXT_READY) {
        pa_context_disconnect(context.get());
        return std::nullopt;
    }

    Query query;
    auto serverInfo = [](pa_context*, const pa_server_info* info, void* data) {
        auto* q = static_cast<Query*>(data);
        if (info && info->default_sink_name) q->defaultSink = info->default_sink_name;
        q->done = true;
    };
    pa_operation_unref(pa_context_get_server_info(context.get(), serverInfo, &query));
    bool answered = runUntil(loop.get(), deadline, [&] { return query.done; });
    if (answered && !query.defaultSink.empty()) {
        query.done = false;
        auto sinkInfo = [](pa_context*, const pa_sink_info* info, int eol, void* data) {
            auto* q = static_cast<Query*>(data);
            if (eol != 0) {
                q->done = true;
                return;
            }
            // A sink without ports (a virtual or network sink) has a route without a name.
            q->route = info->active_port ? routeName(*info->active_port) : std::string();
        };
        pa_operation_unref(
            pa_context_get_sink_info_by_name(context.get(), query.defaultSink.c_str(), sinkInfo, &query));
        runUntil(loop.get(), deadline, [&] { return query.done; });
    }
    pa_context_disconnect(context.get());
    return query.route;
}

}  // namespace kit::qt

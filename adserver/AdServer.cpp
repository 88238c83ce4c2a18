#include "adserver/AdServer.h"

#include "ads/ThirdParty/ZEBJSON.h"
#include "adserver/DashboardApi.h"
#include "adserver/DashboardPage.h"
#include "adserver/Escape.h"
#include "adserver/HouseMedia.h"
#include "adserver/HttpDate.h"
#include "adserver/LandingPages.h"
#include "adserver/MediationDocument.h"
#include "adserver/QueryString.h"
#include "adserver/SupportScript.h"

#include <fmt/format.h>
#include <httplib.h>

#include <sys/socket.h>
#include <algorithm>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstring>

using httplib::Request;
using httplib::Response;

namespace {

constexpr const char* kHtml = "text/html; charset=utf-8";
constexpr const char* kText = "text/plain; charset=utf-8";
constexpr const char* kJson = "application/json";
constexpr size_t kLogTargetLimit = 300;
constexpr size_t kMaxEventsAnswered = 500;
constexpr int64_t kMaxWaitSeconds = 30;

// A transparent 1x1 GIF: the answer to tracking pings and event reports.
const std::string& pixel() {
    static const std::string gif(
        "GIF89a\x01\x00\x01\x00\x80\x00\x00\x00\x00\x00\xff\xff\xff\x21\xf9\x04\x01\x00"
        "\x00\x00\x00\x2c\x00\x00\x00\x00\x01\x00\x01\x00\x00\x02\x02\x44\x01\x00\x3b",
        43);
    return gif;
}

// The query exactly as it arrived: everything after the first '?' of the request target.
std::string rawQuery(const Request& request) {
    size_t mark = request.target.find('?');
    return mark == std::string::npos ? std::string() : request.target.substr(mark + 1);
}

// An event of `kind` for the request, its query kept as it arrived.
Event incoming(std::string kind, const Request& request) {
    Event event;
    event.kind = std::move(kind);
    event.path = request.path;
    event.query = rawQuery(request);
    return event;
}

void answerText(Response& response, int status, const std::string& text) {
    response.status = status;
    response.set_content(text + "\n", kText);
}

// A per-request override: the parameter at the top of the query, or inside the "extras" map.
std::optional<std::string> requestOverride(const std::vector<QueryString::Pair>& params,
                                           std::string_view name) {
    if (auto value = QueryString::value(params, name)) return value;
    auto extras = QueryString::value(params, "extras");
    if (!extras) return std::nullopt;
    auto map = ZEBJSON().objectWithStringError(*extras);
    const kit::Value* value = map && map->map() ? map->map()->find(name) : nullptr;
    if (value && value->string()) return *value->string();
    return std::nullopt;
}

// For the errors that the HTTP layer answers by itself (a request line too long, a body too large).
const char* reason(int status) {
    switch (status) {
        case 400:
            return "bad request";
        case 405:
            return "method not allowed";
        case 413:
            return "the body is too large";
        case 414:
            return "the address is too long";
        case 416:
            return "range not satisfiable";
        default:
            return status >= 500 ? "server error" : "request refused";
    }
}

std::optional<int64_t> number(const std::string& text) {
    int64_t value = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

}  // namespace

AdServer::AdServer(Settings settings)
    : settings_(std::move(settings)), http_(std::make_unique<httplib::Server>()) {}

AdServer::~AdServer() {
    stop();
}

std::unique_ptr<AdServer> AdServer::create(Settings settings, std::string* error) {
    // A client that goes away in the middle of an answer must not end the server.
    std::signal(SIGPIPE, SIG_IGN);
    std::unique_ptr<AdServer> server(new AdServer(std::move(settings)));
    server->store_ = EventStore::open(server->settings_.dbPath, error);
    if (!server->store_) return nullptr;
    server->scriptModified_ = std::time(nullptr);
    server->scriptFault_ = server->settings_.slots.scriptFault();
    for (const Slot& slot : server->settings_.slots.slots())
        server->rotation_.emplace(slot.id, std::make_unique<std::atomic<uint64_t>>(0));
    server->route();

    httplib::Server& http = *server->http_;
    size_t threads = std::max<size_t>(server->settings_.threads, 2);
    http.new_task_queue = [threads] { return new httplib::ThreadPool(threads); };
    // Idle connections are let go after a second, so that stopping never waits long for them.
    http.set_keep_alive_timeout(1);
    // A busy client keeps its connection (and its request thread) as long as it keeps asking.
    http.set_keep_alive_max_count(1000000);
    http.set_payload_max_length(64 * 1024);
    // Headers and body go out in separate writes; without this the second waits for the client's
    // delayed acknowledgement (some 40 ms).
    http.set_tcp_nodelay(true);
    // SO_REUSEADDR lets a restarted server have its port back at once; the library's default also
    // sets SO_REUSEPORT, with which a second server would share the port instead of being refused.
    http.set_socket_options([](socket_t socket) {
        int yes = 1;
        setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
    const Settings& s = server->settings_;
    errno = 0;
    if (s.port == 0) {
        server->port_ = http.bind_to_any_port(s.host);
    } else if (http.bind_to_port(s.host, s.port)) {
        server->port_ = s.port;
    }
    if (server->port_ <= 0) {
        if (error)
            *error = fmt::format("cannot listen on {}:{}: {}", s.host, s.port,
                                 errno ? std::strerror(errno) : "the address is not usable");
        return nullptr;
    }
    return server;
}

std::string AdServer::url(std::string_view path) const {
    return fmt::format("http://{}:{}{}", settings_.host, port_, path);
}

void AdServer::run() {
    runEntered_ = true;
    if (!stopping_) http_->listen_after_bind();
    runExited_ = true;
}

void AdServer::start() {
    thread_ = std::thread([this] { run(); });
}

void AdServer::stop() {
    stopping_ = true;
    if (store_) store_->releaseWaiters();
    // The server only hears a stop once it listens: wait for that, unless it never started.
    while (runEntered_ && !runExited_ && !http_->is_running()) std::this_thread::yield();
    http_->stop();
    if (thread_.joinable()) thread_.join();
}

void AdServer::setScriptFault(std::optional<Fault::Kind> fault) {
    std::lock_guard<std::mutex> lock(scriptFaultMutex_);
    scriptFault_ = fault;
}

std::string AdServer::origin(const Request& request) const {
    std::string host = request.get_header_value("Host");
    bool plain = !host.empty() && host.size() < 256 && std::all_of(host.begin(), host.end(), [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) || std::strchr(".-:[]", c);
    });
    return "http://" + (plain ? host : fmt::format("{}:{}", settings_.host, port_));
}

void AdServer::route() {
    httplib::Server& http = *http_;
    auto bind = [this](void (AdServer::*handler)(const Request&, Response&)) {
        return [this, handler](const Request& request, Response& response) {
            (this->*handler)(request, response);
        };
    };
    http.Get("/", bind(&AdServer::serveDashboard));
    http.Get("/api/stats", bind(&AdServer::serveStats));
    http.Get("/api/events", bind(&AdServer::serveEvents));
    // At the root, or under whatever folder the client's script address names.
    http.Get(R"(/(?:[^?]*/)?sdk-core-v40\.js)", bind(&AdServer::serveScript));
    http.Get("/ad", bind(&AdServer::serveAd));
    http.Get("/click", bind(&AdServer::serveClick));
    http.Get("/track", bind(&AdServer::serveTracking));
    http.Get(R"(/(?:events/)?(imp|clk|nofill))", [this](const Request& request, Response& response) {
        serveReport(request, response, request.matches[1]);
    });
    http.Get("/house/ad", bind(&AdServer::serveHouseAd));
    http.Get(R"(/landing/([a-z]+))", [](const Request& request, Response& response) {
        auto page =
            LandingPages::page(std::string(request.matches[1]), QueryString::parse(rawQuery(request)));
        if (!page) return answerText(response, 404, "no landing page " + std::string(request.matches[1]));
        response.set_content(*page, kHtml);
    });
    http.Get(R"(/img/house-(\d+x\d+)\.svg)", [](const Request& request, Response& response) {
        auto svg = HouseMedia::bannerSvg(std::string(request.matches[1]));
        if (!svg) return answerText(response, 404, "no image of that size (320x50 or 768x90)");
        response.set_content(*svg, "image/svg+xml");
    });
    http.Get("/media/tone.wav", [](const Request&, Response& response) {
        response.set_content(HouseMedia::toneWav(), "audio/wav");
    });
    // The two ends of the redirect loop.
    http.Get(R"(/redirect-loop/(a|b))", [this](const Request& request, Response& response) {
        response.set_redirect(origin(request) +
                              (request.matches[1] == "a" ? "/redirect-loop/b" : "/redirect-loop/a"));
    });
    // Where a broken creative goes: half an answer, then the connection closes.
    http.Get("/broken", [this](const Request& request, Response& response) {
        applyFault(Fault::Kind::Truncated, request, response, "<html><body>gone</body></html>", kHtml, "");
    });

    // Every answer of 400 or more comes here; those without a body get a line that says what happened.
    http.set_error_handler(
        httplib::Server::HandlerWithResponse([](const Request& request, Response& response) {
            if (!response.body.empty()) return httplib::Server::HandlerResponse::Unhandled;
            std::string text = response.status == 404
                                   ? fmt::format("404 nothing here: {}", Escape::displayable(request.path))
                                   : fmt::format("{} {}", response.status, reason(response.status));
            response.set_content(text + "\n", kText);
            return httplib::Server::HandlerResponse::Handled;
        }));
    http.set_exception_handler([this](const Request& request, Response& response, std::exception_ptr error) {
        std::string what = "unknown";
        try {
            std::rethrow_exception(error);
        } catch (const std::exception& e) {
            what = e.what();
        } catch (...) {
        }
        if (settings_.log) {
            std::lock_guard<std::mutex> lock(logMutex_);
            settings_.log(
                fmt::format("error in {}: {}", Escape::forLog(request.path, kLogTargetLimit), what));
        }
        answerText(response, 500, "500 the server failed on this request");
    });
    http.set_logger(
        [this](const Request& request, const Response& response) { logRequest(request, response); });
}

void AdServer::logRequest(const Request& request, const Response& response) {
    if (!settings_.log) return;
    std::string line = fmt::format("{} {} {} {}", request.remote_addr, Escape::forLog(request.method, 16),
                                   Escape::forLog(request.target, kLogTargetLimit), response.status);
    if (!response.body.empty()) line += fmt::format(" {}B", response.body.size());
    std::lock_guard<std::mutex> lock(logMutex_);
    settings_.log(line);
}

std::optional<int64_t> AdServer::record(Event event, Response& response) {
    auto id = store_->record(std::move(event));
    if (!id) answerText(response, 503, "503 the event could not be stored: " + store_->lastError());
    return id;
}

void AdServer::serveDashboard(const Request&, Response& response) {
    response.set_header("Cache-Control", "no-store");
    response.set_content(std::string(DashboardPage::html()), kHtml);
}

void AdServer::serveStats(const Request& request, Response& response) {
    // With "after" (the newest event id the page has) and "wait", the answer waits for a newer event:
    // the dashboard hears of each one at once, however its engine throttles timers.
    auto params = QueryString::parse(rawQuery(request));
    auto after = QueryString::value(params, "after");
    auto wait = number(QueryString::value(params, "wait").value_or("0"));
    auto afterId = after ? number(*after) : std::optional<int64_t>(0);
    if (!afterId || !wait || *wait < 0)
        return answerText(response, 400, "400 \"after\" and \"wait\" are whole numbers (wait 0 or more)");
    if (after && *wait > 0)
        store_->waitForEventAfter(*afterId, double(std::min<int64_t>(*wait, kMaxWaitSeconds)));
    int64_t lastId = 0;
    EventTally tally = store_->tally(&lastId);
    response.set_header("Cache-Control", "no-store");
    response.set_content(DashboardApi::stats(tally, lastId), kJson);
}

void AdServer::serveEvents(const Request& request, Response& response) {
    auto params = QueryString::parse(rawQuery(request));
    auto after = number(QueryString::value(params, "after").value_or("0"));
    auto limit = number(QueryString::value(params, "limit").value_or("50"));
    if (!after || !limit || *limit < 0)
        return answerText(response, 400, "400 \"after\" and \"limit\" are whole numbers (limit 0 or more)");
    auto events = store_->latest(*after, std::min<size_t>(size_t(*limit), kMaxEventsAnswered));
    response.set_header("Cache-Control", "no-store");
    response.set_content(DashboardApi::events(events), kJson);
}

void AdServer::serveScript(const Request& request, Response& response) {
    auto params = QueryString::parse(rawQuery(request));
    std::optional<Fault::Kind> fault;
    if (auto name = QueryString::value(params, "fault")) {
        fault = Fault::named(*name);
        if (!fault)
            return answerText(response, 400, "400 unknown fault \"" + Escape::displayable(*name) + "\"");
    } else {
        std::lock_guard<std::mutex> lock(scriptFaultMutex_);
        fault = scriptFault_;
    }
    const char* type = "application/javascript; charset=utf-8";
    std::string script = SupportScript::text(settings_.slots, origin(request));
    if (fault) return applyFault(*fault, request, response, script, type, SupportScript::broken());

    // The client asks again once a day with the Last-Modified it got (cut before "GMT").
    response.set_header("Last-Modified", HttpDate::format(scriptModified_));
    response.set_header("Cache-Control", "no-cache");
    auto since = HttpDate::parse(request.get_header_value("If-Modified-Since"));
    if (since && *since >= scriptModified_) {
        response.status = 304;
        return;
    }
    response.set_content(script, type);
}

std::string AdServer::nextCreative(const Slot& slot) {
    const auto& names = slot.creatives.empty() ? CreativeLibrary::bannerNames() : slot.creatives;
    auto& counter = *rotation_.find(slot.id)->second;
    return names[counter++ % names.size()];
}

void AdServer::serveAd(const Request& request, Response& response) {
    Event event = incoming("request", request);
    auto params = QueryString::parse(event.query);
    auto slotName = QueryString::value(params, "slotname");
    event.slot = slotName.value_or("");
    const Slot* slot = slotName ? settings_.slots.find(*slotName) : nullptr;
    auto reject = [&](std::string outcome, std::string text) {
        event.outcome = std::move(outcome);
        if (record(event, response)) answerText(response, 400, "400 " + text);
    };
    if (!slotName) return reject("invalid", "no slotname");
    if (!slot) return reject("invalid", "unknown slotname \"" + Escape::displayable(*slotName) + "\"");

    std::optional<Fault::Kind> fault = slot->fault;
    if (auto name = requestOverride(params, "fault")) {
        fault = Fault::named(*name);
        if (!fault) return reject("invalid", "unknown fault \"" + Escape::displayable(*name) + "\"");
    }
    std::string creative;
    if (auto name = requestOverride(params, "creative")) {
        if (!CreativeLibrary::has(*name))
            return reject("invalid", "unknown creative \"" + Escape::displayable(*name) + "\" (" +
                                         CreativeLibrary::nameList() + ")");
        creative = *name;
    }
    bool interstitial = QueryString::value(params, "format") == "interstitial_mb";

    if (slot->answer == Slot::Answer::Off) {
        event.outcome = "off";
        if (record(event, response)) answerText(response, 503, "503 the slot is switched off");
        return;
    }
    bool mediation = slot->answer == Slot::Answer::Mediation;
    bool noFill = slot->answer == Slot::Answer::NoFill;
    if (fault) {
        event.outcome = "fault";
        event.detail = Fault::name(*fault);
    } else if (mediation) {
        event.outcome = "fill";
        event.detail = "mediation";
    } else if (noFill) {
        event.outcome = "nofill";
    } else {
        if (creative.empty()) creative = interstitial ? "interstitial" : nextCreative(*slot);
        event.outcome = "fill";
        event.detail = creative;
    }
    auto id = record(event, response);
    if (!id) return;

    CreativeLibrary::Context context{origin(request), slot->id, *id, slot->width, slot->height};
    response.set_header("Cache-Control", "no-store");
    if (slot->refreshSeconds > 0)
        response.set_header("X-Quor-Refresh-Rate", fmt::format("{}", slot->refreshSeconds));
    if (fault) {
        return applyFault(*fault, request, response, CreativeLibrary::html("text", context), kHtml,
                          CreativeLibrary::brokenPage(context));
    }
    if (mediation) {
        response.set_content(
            MediationDocument::json(*slot, interstitial, fmt::format("{}:{}", slot->id, *id)), kJson);
        return;
    }
    if (noFill) return response.set_content("", kHtml);

    response.set_header("X-Quor-Tracking-Urls", CreativeLibrary::trackingUrl(context, creative, "imp"));
    if (slot->clickTracking)
        response.set_header("X-Quor-Click-Tracking-Urls",
                            CreativeLibrary::trackingUrl(context, creative, "click"));
    if (!slot->orientation.empty()) response.set_header("X-Quor-Orientation", slot->orientation);
    if (slot->interstitialTimeout > 0)
        response.set_header("X-Quor-Interstitial-Timeout", fmt::format("{}", slot->interstitialTimeout));
    response.set_content(CreativeLibrary::html(creative, context), kHtml);
}

void AdServer::applyFault(Fault::Kind fault, const Request& request, Response& response,
                          const std::string& body, const std::string& type, const std::string& brokenBody) {
    if (auto status = Fault::status(fault)) {
        return answerText(response, *status,
                          fmt::format("{} fault \"{}\" on demand", *status, Fault::name(fault)));
    }
    switch (fault) {
        case Fault::Kind::Stall: {
            auto until =
                std::chrono::steady_clock::now() + std::chrono::duration<double>(settings_.stallSeconds);
            while (!stopping_ && std::chrono::steady_clock::now() < until)
                std::this_thread::sleep_for(std::chrono::milliseconds(20));
            return answerText(response, 503, "503 fault \"stall\": stalled until now");
        }
        case Fault::Kind::Truncated: {
            // Content-Length promises the whole body; half of it goes out, then the connection closes.
            auto half = std::make_shared<std::string>(body.substr(0, body.size() / 2));
            response.set_content_provider(body.size(), type,
                                          [half](size_t offset, size_t, httplib::DataSink& sink) {
                                              if (offset == 0 && !half->empty())
                                                  sink.write(half->data(), half->size());
                                              return offset == 0 && !half->empty();
                                          });
            return;
        }
        case Fault::Kind::RedirectLoop:
            return response.set_redirect(origin(request) + "/redirect-loop/a");
        case Fault::Kind::StoreRedirect:
            return response.set_redirect(CreativeLibrary::storeUrl());
        case Fault::Kind::Empty:
            return response.set_content("", type);
        case Fault::Kind::WhiteSpace:
            return response.set_content(" \n\t \r\n  ", type);
        case Fault::Kind::BrokenPage:
            return response.set_content(brokenBody, type);
        default:
            return;
    }
}

void AdServer::serveClick(const Request& request, Response& response) {
    Event event = incoming("click", request);
    event.outcome = "redirect";
    auto params = QueryString::parse(event.query);
    event.slot = QueryString::value(params, "slot").value_or("");
    event.detail = QueryString::value(params, "c").value_or("");
    if (!record(event, response)) return;
    // Only the server's own landing pages: the redirector must not send clients anywhere a query names.
    std::string to = QueryString::value(params, "to").value_or("links");
    const auto& pages = LandingPages::names();
    if (std::find(pages.begin(), pages.end(), to) == pages.end()) to = "links";
    response.set_redirect(origin(request) + "/landing/" + to);
}

void AdServer::serveTracking(const Request& request, Response& response) {
    Event event = incoming("ping", request);
    auto params = QueryString::parse(event.query);
    event.slot = QueryString::value(params, "slot").value_or("");
    event.outcome = QueryString::value(params, "ev").value_or("");
    event.detail = QueryString::value(params, "c").value_or("");
    if (!record(event, response)) return;
    response.set_header("Cache-Control", "no-store");
    response.set_content(pixel(), "image/gif");
}

void AdServer::serveReport(const Request& request, Response& response, const std::string& kind) {
    Event event = incoming(kind, request);
    event.outcome = "reported";
    auto params = QueryString::parse(event.query);
    event.slot = QueryString::value(params, "slotname").value_or("");
    event.network = QueryString::value(params, "ad_network_id").value_or("");
    if (!record(event, response)) return;
    response.set_header("Cache-Control", "no-store");
    response.set_content(pixel(), "image/gif");
}

void AdServer::serveHouseAd(const Request& request, Response& response) {
    Event event = incoming("house", request);
    event.network = "house";
    auto params = QueryString::parse(event.query);
    event.slot = QueryString::value(params, "slot").value_or("");
    std::string pubid = QueryString::value(params, "pubid").value_or("");
    std::string size = QueryString::value(params, "size").value_or("320x50");
    if (!HouseMedia::bannerSvg(size)) return answerText(response, 400, "400 size is 320x50 or 768x90");
    // A publisher id of "nofill" (or none) is how a test asks the house network for no ad.
    event.outcome = pubid.empty() || pubid == "nofill" ? "nofill" : "fill";
    event.detail = pubid;
    if (!record(event, response)) return;
    response.set_header("Cache-Control", "no-store");
    if (event.outcome == "nofill") {
        response.status = 204;
        return;
    }
    std::string base = origin(request);
    int width = size == "320x50" ? 320 : 768;
    int height = size == "320x50" ? 50 : 90;
    kit::Value::Map ad{{"image", fmt::format("{}/img/house-{}.svg", base, size)},
                       {"click", base + "/landing/links"},
                       {"width", width},
                       {"height", height}};
    response.set_content(ZEBJSON().stringWithObjectError(ad).value_or("{}"), kJson);
}

#pragma once

// The Qt port under the contract suites: a real HTTP server on loopback and the real web engine,
// offscreen, in real time.
#include "kit/WebView.h"
#include "kit/port/Platform.h"
#include "kit/qt/QtPlatform.h"
#include "tests/integration/support/LoopbackServer.h"
#include "tests/integration/support/QtTestApplication.h"
#include "tests/integration/support/WebTestSupport.h"
#include "tests/kit/port/PortFixture.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace contract {

class QtPort {
public:
    void setUp() {
        qttest::ensureApplication();
        setenv("SDL_AUDIODRIVER", "dummy", 0);
        kit::Platform::install(std::make_unique<kit::qt::QtPlatform>(kit::UserInterfaceIdiom::Phone));
        stopping_ = false;
        server_ = std::make_unique<qttest::LoopbackServer>();
        auto handler = [this](const httplib::Request& request, httplib::Response& response) {
            answer(request, response);
        };
        server_->server().Get(".*", handler);
        server_->server().Post(".*", handler);
    }
    void tearDown() {
        kit::Platform::uninstall();
        stopping_ = true;
        server_.reset();
    }

    std::string serve(const std::string& path, Reply reply) {
        std::lock_guard lock(mutex_);
        replies_[path] = std::move(reply);
        return server_->url(path);
    }
    std::string unreachableUrl() const {
        qttest::LoopbackServer closed;
        closed.stop();
        return closed.url("/");
    }
    std::vector<SeenRequest> seen(const std::string& path) {
        std::lock_guard lock(mutex_);
        return seen_[path];
    }
    bool runUntil(const std::function<bool()>& done, double seconds) {
        return webtest::runUntil(done, seconds);
    }
    void settle() {
        webtest::runUntil([] { return false; }, 0.5);
    }
    // The real engine runs the scripts itself.
    void answerScripts(kit::WebView&, const ScriptAnswers&) {}
    void navigateFromContent(kit::WebView& view, const std::string& url) {
        view.evaluateScript("location.href = '" + url + "';");
    }

private:
    // Sleeps in small steps, so that a stopping server is not held up.
    bool pause(double seconds) {
        auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
        while (std::chrono::steady_clock::now() < end) {
            if (stopping_) return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        return true;
    }

    void answer(const httplib::Request& request, httplib::Response& response) {
        Reply reply;
        {
            std::lock_guard lock(mutex_);
            SeenRequest seen{request.method, {}, request.body};
            for (const auto& [name, value] : request.headers) seen.headers.add(name, value);
            seen_[request.path].push_back(std::move(seen));
            auto found = replies_.find(request.path);
            if (found == replies_.end()) {
                response.status = 404;
                return;
            }
            reply = found->second;
        }
        if (!pause(reply.headDelay)) return;
        response.status = reply.status;
        // Not a type the server compresses: a compressed body would come only at its end.
        std::string type = reply.headers.value("Content-Type").value_or("application/octet-stream");
        for (const auto& [name, value] : reply.headers.fields())
            if (name != "Content-Type") response.set_header(name, value);
        if (reply.pieceGap <= 0) {
            std::string body;
            for (const auto& piece : reply.pieces) body += piece;
            response.set_content(body, type);
            return;
        }
        auto pieces = std::make_shared<std::vector<std::string>>(reply.pieces);
        double gap = reply.pieceGap;
        response.set_chunked_content_provider(type,
                                              [this, pieces, gap](size_t index, httplib::DataSink& sink) {
                                                  size_t i = index == 0 ? 0 : sentPieces(pieces, index);
                                                  if (i >= pieces->size() || (i > 0 && !pause(gap))) {
                                                      sink.done();
                                                      return true;
                                                  }
                                                  sink.write((*pieces)[i].data(), (*pieces)[i].size());
                                                  return true;
                                              });
    }
    // How many pieces make up `bytes` sent so far.
    static size_t sentPieces(const std::shared_ptr<std::vector<std::string>>& pieces, size_t bytes) {
        size_t i = 0;
        for (size_t sent = 0; i < pieces->size() && sent < bytes; ++i) sent += (*pieces)[i].size();
        return i;
    }

    std::unique_ptr<qttest::LoopbackServer> server_;
    std::atomic<bool> stopping_{false};
    std::mutex mutex_;
    std::map<std::string, Reply> replies_;
    std::map<std::string, std::vector<SeenRequest>> seen_;
};

}  // namespace contract

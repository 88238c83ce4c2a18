#pragma once

// The simulated port under the contract suites: scripted answers on a made-up host, virtual time.
#include "kit/port/Platform.h"
#include "kit/sim/SimPlatform.h"
#include "kit/sim/SimWebPage.h"
#include "tests/kit/port/PortFixture.h"

#include <functional>
#include <string>
#include <vector>

namespace contract {

class SimPort {
public:
    void setUp() {
        platform_ = &kit::sim::SimPlatform::install();
        platform_->setWebPagesFinishLoads(true);  // as pages on a real engine do
    }
    void tearDown() { kit::Platform::uninstall(); }

    std::string serve(const std::string& path, Reply reply) {
        kit::sim::SimAnswer answer;
        answer.status = reply.status;
        answer.headers = std::move(reply.headers);
        answer.body = std::move(reply.pieces);
        answer.delay = reply.headDelay;
        answer.pieceInterval = reply.pieceGap;
        platform_->http().respond(kHost + path, std::move(answer));
        return kHost + path;
    }
    std::string unreachableUrl() const { return "http://unreachable.test/"; }
    std::vector<SeenRequest> seen(const std::string& path) const {
        std::vector<SeenRequest> out;
        for (const auto& sent : platform_->http().sentRequests()) {
            const kit::UrlRequest& request = sent.request;
            if (request.url().absoluteString() == kHost + path)
                out.push_back({request.httpMethod(), request.allHttpHeaderFields(), request.httpBody()});
        }
        return out;
    }
    bool runUntil(const std::function<bool()>& done, double seconds) {
        auto& clock = platform_->clock();
        const double end = clock.now() + seconds;
        clock.runUntilIdle();
        while (!done() && clock.now() < end) clock.advance(0.01);
        return done();
    }
    void settle() { platform_->clock().advance(5); }
    void answerScripts(kit::WebView& view, ScriptAnswers answers) {
        kit::sim::SimWebPage::of(view).answerScripts([answers](const std::string& script) {
            auto found = answers.find(script);
            return found == answers.end() ? std::string() : found->second;
        });
    }
    void navigateFromContent(kit::WebView& view, const std::string& url) {
        kit::sim::SimWebPage::of(view).navigate(*kit::Url::parse(url), kit::WebViewNavigationType::Other);
    }

private:
    static inline const std::string kHost = "http://port.test";
    kit::sim::SimPlatform* platform_ = nullptr;
};

}  // namespace contract

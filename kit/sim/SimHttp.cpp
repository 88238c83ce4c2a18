#include "kit/sim/SimHttp.h"

#include "kit/CallGroup.h"
#include "kit/RunLoop.h"
#include "kit/UrlError.h"

#include <algorithm>

namespace kit::sim {

SimAnswer SimAnswer::ok(std::string body, HttpHeaders headers) {
    return withStatus(200, std::move(headers), std::move(body));
}

SimAnswer SimAnswer::withStatus(int status, HttpHeaders headers, std::string body) {
    SimAnswer answer;
    answer.status = status;
    answer.headers = std::move(headers);
    if (!body.empty()) answer.body.push_back(std::move(body));
    return answer;
}

SimAnswer SimAnswer::redirect(std::string_view location, int status) {
    return SimAnswer::withStatus(status, {{"Location", std::string(location)}});
}

SimAnswer SimAnswer::failing(int urlErrorCode, double delay) {
    SimAnswer answer;
    answer.status = 0;
    answer.delay = delay;
    answer.failure = UrlError::make(urlErrorCode, "");
    return answer;
}

// Plays one answer on the run loop. Every report is a call of its own in this loader's group, so
// cancelling or destroying it drops whatever has not been reported yet.
class SimHttp::Loader : public UrlLoader {
public:
    Loader(SimHttp& network, const UrlRequest& request, UrlLoader::Client& client)
        : network_(network), openCount_(network.open_), request_(request), client_(client) {}
    ~Loader() override { cancel(); }

    void start() override {
        if (started_) return;
        started_ = true;
        if (request_.httpShouldHandleCookies()) network_.addCookies(request_);
        network_.sent_.push_back({request_, RunLoop::main().now()});
        ++*openCount_;
        open_ = true;
        SimAnswer answer = network_.answer(request_);
        // Each wait is for progress: one longer than the time-out ends the exchange.
        const double timeout = request_.timeoutInterval();
        double at = 0;
        auto wait = [&](double gap) {
            if (timeout > 0 && gap > timeout) {
                reports_.postAfter(at + timeout, [this] {
                    end(false, UrlError::make(UrlError::kTimedOut, request_.url().absoluteString()));
                });
                return false;
            }
            at += gap;
            return true;
        };
        if (!wait(answer.delay)) return;
        if (answer.status != 0) {
            UrlResponse head(request_.url(), answer.status, answer.headers);
            reports_.postAfter(at, [this, head] {
                if (request_.httpShouldHandleCookies())
                    network_.keepCookies(request_, head.allHeaderFields());
                client_.loaderDidReceiveResponse(head);
            });
            for (size_t i = 0; i < answer.body.size(); ++i) {
                if (i > 0 && !wait(answer.pieceInterval)) return;
                reports_.postAfter(at,
                                   [this, piece = answer.body[i]] { client_.loaderDidReceiveData(piece); });
            }
        }
        if (answer.failure) {
            auto error = answer.failure;
            if (error->domain() == UrlError::kDomain && error->code() != UrlError::kUnknown)
                error = UrlError::make(static_cast<int>(error->code()), request_.url().absoluteString(),
                                       error->localizedDescription());
            reports_.postAfter(at, [this, error] { end(false, error); });
        } else {
            reports_.postAfter(at, [this] { end(true, nullptr); });
        }
    }

    void cancel() override {
        reports_.cancelAll();
        close();
    }

private:
    void close() {
        if (!open_) return;
        open_ = false;
        --*openCount_;
    }
    void end(bool finished, std::shared_ptr<const Error> error) {
        close();
        if (finished)
            client_.loaderDidFinish();
        else
            client_.loaderDidFail(std::move(error));
    }

    SimHttp& network_;
    std::shared_ptr<size_t> openCount_;
    UrlRequest request_;
    UrlLoader::Client& client_;
    bool started_ = false;
    bool open_ = false;
    CallGroup reports_;
};

void SimHttp::respond(const std::string& url, Script script) {
    scripts_[url] = std::move(script);
}

void SimHttp::respond(const std::string& url, SimAnswer answer) {
    respond(url, [answer](const UrlRequest&) { return answer; });
}

void SimHttp::respondInTurn(const std::string& url, std::vector<SimAnswer> answers) {
    auto next = std::make_shared<size_t>(0);
    respond(url, [answers = std::move(answers), next](const UrlRequest&) {
        const SimAnswer& answer = answers.at(std::min(*next, answers.size() - 1));
        ++*next;
        return answer;
    });
}

SimAnswer SimHttp::answer(const UrlRequest& request) const {
    const std::string& url = request.url().absoluteString();
    auto script = scripts_.find(url);
    if (script == scripts_.end()) script = scripts_.find(std::string_view(url).substr(0, url.find('?')));
    if (script == scripts_.end()) return SimAnswer::failing(UrlError::kCannotConnectToHost);
    return script->second(request);
}

void SimHttp::keepCookies(const UrlRequest& request, const HttpHeaders& headers) {
    auto set = headers.value("Set-Cookie");
    if (!set) return;
    auto& jar = cookies_[request.url().host().value_or("")];
    // Repeated fields arrive folded with ", "; attributes after ";" are not kept.
    std::string_view rest = *set;
    while (!rest.empty()) {
        std::string_view field = rest.substr(0, rest.find(", "));
        rest.remove_prefix(std::min(rest.size(), field.size() + 2));
        std::string_view pair = field.substr(0, field.find(';'));
        size_t equals = pair.find('=');
        if (equals == std::string_view::npos || equals == 0) continue;
        jar[std::string(pair.substr(0, equals))] = std::string(pair.substr(equals + 1));
    }
}

void SimHttp::addCookies(UrlRequest& request) const {
    auto jar = cookies_.find(request.url().host().value_or(""));
    if (jar == cookies_.end() || jar->second.empty()) return;
    std::string header;
    for (const auto& [name, value] : jar->second) header += (header.empty() ? "" : "; ") + name + "=" + value;
    request.setValueForHttpHeaderField(header, "Cookie");
}

size_t SimHttp::requestCount(std::string_view url) const {
    return static_cast<size_t>(std::count_if(sent_.begin(), sent_.end(), [&](const SentRequest& sent) {
        return sent.request.url().absoluteString() == url;
    }));
}

const UrlRequest* SimHttp::lastRequest(std::string_view url) const {
    for (auto it = sent_.rbegin(); it != sent_.rend(); ++it)
        if (it->request.url().absoluteString() == url) return &it->request;
    return nullptr;
}

std::unique_ptr<UrlLoader> SimHttp::createLoader(const UrlRequest& request, UrlLoader::Client& client) {
    return std::make_unique<Loader>(*this, request, client);
}

}  // namespace kit::sim

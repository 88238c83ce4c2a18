#pragma once

#include "kit/Error.h"
#include "kit/HttpHeaders.h"
#include "kit/UrlRequest.h"
#include "kit/port/UrlLoader.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kit::sim {

// What the simulated HTTP network answers to one request.
struct SimAnswer {
    // 0 sends no head at all (only sensible with a failure).
    int status = 200;
    HttpHeaders headers;
    // Each piece is reported on its own.
    std::vector<std::string> body;
    // Virtual seconds before the head arrives, and between the pieces that follow.
    double delay = 0;
    double pieceInterval = 0;
    // Ends the exchange with this error after the head and pieces (if any) instead of finishing.
    std::shared_ptr<const Error> failure;

    static SimAnswer ok(std::string body, HttpHeaders headers = {});
    static SimAnswer withStatus(int status, HttpHeaders headers = {}, std::string body = {});
    static SimAnswer redirect(std::string_view location, int status = 302);
    static SimAnswer failing(int urlErrorCode, double delay = 0);
};

// The simulated HTTP network: answers scripted per URL, and a log of every request sent. A request is
// answered by the script for its URL as written, else by the one for the URL without its query
// (so that cache-busting parameters need no script of their own). A URL without a script cannot
// be reached (UrlError::kCannotConnectToHost). As a real network does, it keeps the cookies that
// answers set (per host) and sends them with requests that handle cookies, and it ends an exchange
// that makes no progress for longer than the request's time-out (UrlError::kTimedOut).
class SimHttp {
public:
    using Script = std::function<SimAnswer(const UrlRequest&)>;

    struct SentRequest {
        UrlRequest request;
        double time;
    };

    // Replaces the URL's script.
    void respond(const std::string& url, Script script);
    void respond(const std::string& url, SimAnswer answer);
    // Answers in turn, the last one again for every later request.
    void respondInTurn(const std::string& url, std::vector<SimAnswer> answers);

    const std::vector<SentRequest>& sentRequests() const { return sent_; }
    // How many requests went to this exact URL.
    size_t requestCount(std::string_view url) const;
    // The last request sent to this exact URL; none when there was none.
    const UrlRequest* lastRequest(std::string_view url) const;
    // How many exchanges are under way.
    size_t openExchanges() const { return *open_; }

    std::unique_ptr<UrlLoader> createLoader(const UrlRequest& request, UrlLoader::Client& client);

private:
    class Loader;
    SimAnswer answer(const UrlRequest& request) const;
    void keepCookies(const UrlRequest& request, const HttpHeaders& headers);
    void addCookies(UrlRequest& request) const;

    std::map<std::string, Script, std::less<>> scripts_;
    std::map<std::string, std::map<std::string, std::string>> cookies_;  // by host, then name
    std::vector<SentRequest> sent_;
    // Shared with the loaders, which may outlive the network by a little at tear-down.
    std::shared_ptr<size_t> open_ = std::make_shared<size_t>(0);
};

}  // namespace kit::sim

#pragma once

// What the contract suites ask of a port's test fixture. Each port supplies one class with:
//   void setUp(); void tearDown();        install and remove the platform
//   std::string serve(path, Reply);       answer requests for `path` so; returns its URL
//   std::string unreachableUrl();         a URL whose connection is refused
//   std::vector<SeenRequest> seen(path);  the requests that reached `path`, oldest first
//   bool runUntil(done, seconds);         run the main loop until done() or the time is up
//   void settle();                        run the loop long enough for anything late to show
//   void answerScripts(view, answers);    the simulated engine answers these; a real one runs them
//   void navigateFromContent(view, url);  the page's own content navigates its main frame
#include "kit/HttpHeaders.h"

#include <map>
#include <string>
#include <vector>

namespace contract {

// How a served path answers.
struct Reply {
    int status = 200;
    kit::HttpHeaders headers;
    std::vector<std::string> pieces;  // the body, sent piece by piece
    double headDelay = 0;             // seconds before the head
    double pieceGap = 0;              // seconds between pieces
};

struct SeenRequest {
    std::string method;
    kit::HttpHeaders headers;
    std::string body;
};

using ScriptAnswers = std::map<std::string, std::string>;

}  // namespace contract

#pragma once

#include "kit/Error.h"
#include "kit/UrlRequest.h"
#include "kit/UrlResponse.h"

#include <memory>
#include <string_view>

namespace kit {

// One exchange with a server, as a port carries it out for a UrlConnection: send one request,
// report the answer's head, its body in pieces, then the end or a failure.
//
// What a port promises:
// - every report arrives in a turn of the main run loop of its own, never inside start();
// - redirects are not followed: a 3xx answer is reported like any other;
// - nothing is reported after cancel() or after the loader is destroyed, and the client may do
//   either from inside a report;
// - cookies are kept per process and sent when the request asks for it;
// - no answer is taken from or put into a cache of the port's own;
// - the request's time-out counts time without progress, not the whole exchange.
class UrlLoader {
public:
    class Client {
    public:
        virtual ~Client();
        virtual void loaderDidReceiveResponse(const UrlResponse& response) = 0;
        virtual void loaderDidReceiveData(std::string_view data) = 0;
        virtual void loaderDidFinish() = 0;
        virtual void loaderDidFail(std::shared_ptr<const Error> error) = 0;
    };

    virtual ~UrlLoader();
    virtual void start() = 0;
    virtual void cancel() = 0;
};

}  // namespace kit

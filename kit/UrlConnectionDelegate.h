#pragma once

#include "kit/Error.h"
#include "kit/UrlRequest.h"
#include "kit/UrlResponse.h"

#include <memory>
#include <optional>
#include <string_view>

namespace kit {

class UrlConnection;

// What a connection tells the one listening to it, each call in a turn of the run loop of its own,
// in this order: will-send-request for the first request and again for each redirect, then one
// response, the body in pieces and the end; or a failure at any point. Every method is optional.
class UrlConnectionDelegate {
public:
    virtual ~UrlConnectionDelegate();

    // `redirectResponse` is none for the first request. Answer the request to send (the one given,
    // or another), or none not to send it: for a redirect the redirect's own answer then becomes
    // the connection's response; for the first request the connection ends without further calls.
    virtual std::optional<UrlRequest> connectionWillSendRequestRedirectResponse(
        UrlConnection& connection, const UrlRequest& request, const UrlResponse* redirectResponse);
    virtual void connectionDidReceiveResponse(UrlConnection& connection, const UrlResponse& response);
    virtual void connectionDidReceiveData(UrlConnection& connection, std::string_view data);
    virtual void connectionDidFinishLoading(UrlConnection& connection);
    virtual void connectionDidFailWithError(UrlConnection& connection, std::shared_ptr<const Error> error);
};

}  // namespace kit

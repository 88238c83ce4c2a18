#pragma once

#include "kit/UrlConnection.h"

#include <memory>

namespace kit {

// Makes connections, so that who opens them can be replaced (tests, or a layer that wants to see
// every connection made).
class UrlConnectionFactory {
public:
    virtual ~UrlConnectionFactory();

    // None when no connection can be made.
    virtual std::shared_ptr<UrlConnection> newConnectionWithRequestDelegateStartImmediately(
        const UrlRequest& request, std::weak_ptr<UrlConnectionDelegate> delegate, bool startImmediately) = 0;
    // Started at once.
    virtual std::shared_ptr<UrlConnection> connectionWithRequestDelegate(
        const UrlRequest& request, std::weak_ptr<UrlConnectionDelegate> delegate);

    // kit's own: plain UrlConnections.
    static std::shared_ptr<UrlConnectionFactory> plain();
};

}  // namespace kit

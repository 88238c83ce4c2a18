#include "kit/UrlConnectionFactory.h"

namespace kit {

namespace {
class PlainFactory : public UrlConnectionFactory {
public:
    std::shared_ptr<UrlConnection> newConnectionWithRequestDelegateStartImmediately(
        const UrlRequest& request, std::weak_ptr<UrlConnectionDelegate> delegate,
        bool startImmediately) override {
        return UrlConnection::create(request, std::move(delegate), startImmediately);
    }
};
}  // namespace

UrlConnectionFactory::~UrlConnectionFactory() = default;

std::shared_ptr<UrlConnection> UrlConnectionFactory::connectionWithRequestDelegate(
    const UrlRequest& request, std::weak_ptr<UrlConnectionDelegate> delegate) {
    return newConnectionWithRequestDelegateStartImmediately(request, std::move(delegate), true);
}

std::shared_ptr<UrlConnectionFactory> UrlConnectionFactory::plain() {
    static const auto factory = std::make_shared<PlainFactory>();
    return factory;
}

}  // namespace kit

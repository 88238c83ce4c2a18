#include "kit/Error.h"

#include <fmt/format.h>

namespace kit {

Error::Error(std::string domain, int64_t code, Value::Map userInfo,
             std::shared_ptr<const Error> underlyingError)
    : domain_(std::move(domain)),
      code_(code),
      userInfo_(std::move(userInfo)),
      underlying_(std::move(underlyingError)) {}

std::shared_ptr<const Error> Error::make(std::string domain, int64_t code, Value::Map userInfo,
                                         std::shared_ptr<const Error> underlyingError) {
    return std::make_shared<Error>(std::move(domain), code, std::move(userInfo), std::move(underlyingError));
}

std::string Error::localizedDescription() const {
    if (const Value* v = userInfo_.find(kLocalizedDescriptionKey); v && v->string()) return *v->string();
    return fmt::format("The operation couldn't be completed. ({} error {}.)", domain_, code_);
}

std::optional<std::string> Error::localizedFailureReason() const {
    if (const Value* v = userInfo_.find(kLocalizedFailureReasonKey); v && v->string()) return *v->string();
    return std::nullopt;
}

std::string Error::description() const {
    std::string text = fmt::format("Error Domain={} Code={} \"{}\"", domain_, code_, localizedDescription());
    if (!userInfo_.empty()) text += " UserInfo=" + Value(userInfo_).description();
    if (underlying_) text += " Underlying=" + underlying_->description();
    return text;
}

}  // namespace kit

#pragma once

#include "kit/Object.h"
#include "kit/Value.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace kit {

// An error: a domain, a code and a user-info map. Subclasses add their own constructors;
// callers tell kinds apart with dynamic_cast.
class Error : public Object {
public:
    // Keys of the user-info map.
    static constexpr const char* kLocalizedDescriptionKey = "LocalizedDescription";
    static constexpr const char* kLocalizedFailureReasonKey = "LocalizedFailureReason";
    // The underlying error is an object, not a Value: it is kept beside the map, under this name.
    static constexpr const char* kUnderlyingErrorKey = "UnderlyingError";

    Error(std::string domain, int64_t code, Value::Map userInfo = {},
          std::shared_ptr<const Error> underlyingError = nullptr);
    static std::shared_ptr<const Error> make(std::string domain, int64_t code, Value::Map userInfo = {},
                                             std::shared_ptr<const Error> underlyingError = nullptr);

    const std::string& domain() const { return domain_; }
    int64_t code() const { return code_; }
    const Value::Map& userInfo() const { return userInfo_; }
    const std::shared_ptr<const Error>& underlyingError() const { return underlying_; }

    // The user-info description, or a generic text naming domain and code.
    std::string localizedDescription() const;
    std::optional<std::string> localizedFailureReason() const;

    std::string description() const override;

private:
    std::string domain_;
    int64_t code_;
    Value::Map userInfo_;
    std::shared_ptr<const Error> underlying_;
};

}  // namespace kit

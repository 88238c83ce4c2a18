#pragma once

#include "kit/Error.h"

#include <memory>
#include <string>

class ZEBRequestPrivate;

// The domain of every error of the ad client.
inline constexpr const char* kZEBErrorDomain = "com.vantor.ads";
inline constexpr const char* kZEBErrorHttpStatus = "HttpStatus";

enum ZEBErrorCode {
    ZEBErrorCodeInvalidRequest = 0,
    ZEBErrorCodeNoAd = 1,
    ZEBErrorCodeNetwork = 2,
    ZEBErrorCodeServer = 3,
    ZEBErrorCodeOSVersion = 4,
    ZEBErrorCodeTimeout = 5,
    ZEBErrorCodeInterstitialUsed = 6,
    ZEBErrorCodeMediation = 7,
};

// A failure reported to the application: the code's fixed message, the HTTP status when there was
// one and, for an invalid request, the request's parameters.
class ZEBRequestError : public kit::Error {
public:
    ZEBRequestError(int code, const ZEBRequestPrivate* request, int httpStatusCode);

    static std::string localizedStringForErrorCode(int code);
    static std::shared_ptr<ZEBRequestError> errorWithCode(int code, const ZEBRequestPrivate* request,
                                                          int httpStatusCode = 0);
};

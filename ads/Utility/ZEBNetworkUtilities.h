#pragma once

#include "kit/Url.h"
#include "kit/Value.h"

#include <optional>
#include <string>
#include <string_view>

// The user agent that the ad client's own downloads send, and the query-string helpers used to
// extend ad and tracking URLs and to read parameters out of URLs.
class ZEBNetworkUtilities {
public:
    // None until an ad web view has sent its first request.
    static std::optional<std::string> userAgentString();
    // An empty or unchanged text is ignored.
    static void setUserAgentString(std::string_view userAgent);

    // Percent-encodes UTF-8 text; only letters, digits and "-._~" stay as they are.
    static std::string encodeURL(std::string_view string);

    // Appends each pair, in the map's order, at the very end of the URL's text (after a fragment,
    // when there is one): "?" first unless the URL already has a non-empty query, "&" after. Keys go
    // as they are; values are encoded, and a value that encodes to nothing leaves the key bare.
    // None when the result is not a URL (a key that no URL may hold).
    static std::optional<kit::Url> appendQueryParametersToURL(const kit::Value::Map& parameters,
                                                              const kit::Url& url);
    // One pair; a missing value counts as "".
    static std::optional<kit::Url> appendQueryKeyValueToURL(std::string_view key,
                                                            std::optional<std::string_view> value,
                                                            const kit::Url& url);

    // "a=1&b=2;c=3" as a map of strings: pieces split at runs of "&" and ";"; a piece counts only
    // when it splits at "=" into exactly two parts that both decode (UTF-8). Keys are lower-cased;
    // a later duplicate wins.
    static kit::Value::Map dictionaryFromQueryString(std::optional<std::string_view> query);

    // The text before the last "#".
    static std::string urlStringWithoutHashFragment(std::string_view string);

    // The raw (still encoded) value of the first "key=value" piece of the URL's query whose name
    // equals `key` exactly.
    static std::optional<std::string> parameterValueForKeyFromURL(std::string_view key, const kit::Url& url);
};

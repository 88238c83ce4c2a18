// Splits arbitrary text as a query string and as a URL's query, and appends the pairs it found.
#include "ads/Utility/ZEBNetworkUtilities.h"

#include <cstdlib>
#include <string_view>

namespace {
void check(bool condition) {
    if (!condition) std::abort();
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string_view text(reinterpret_cast<const char*>(data), size);
    kit::Value::Map pairs = ZEBNetworkUtilities::dictionaryFromQueryString(text);
    for (const auto& [key, value] : pairs) {
        // Keys come out lower-cased and every value is text.
        for (char c : key) check(!(c >= 'A' && c <= 'Z'));
        check(value.isString());
    }
    std::string encoded = ZEBNetworkUtilities::encodeURL(text);
    check(kit::Url::percentDecode(encoded) == std::string(text));

    if (auto url = kit::Url::parse("http://h/p?" + std::string(text))) {
        ZEBNetworkUtilities::parameterValueForKeyFromURL("ai", *url);
        if (auto extended = ZEBNetworkUtilities::appendQueryParametersToURL(pairs, *url))
            check(extended->absoluteString().starts_with(url->absoluteString()));
    }
    ZEBNetworkUtilities::urlStringWithoutHashFragment(text);
    return 0;
}

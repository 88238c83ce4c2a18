#include "ads/Utility/ZEBNetworkUtilities.h"

#include "ads/ThirdParty/KBLStringEncoding.h"
#include "kit/SharedInstances.h"

namespace {

// The user agent of the ad web views, once one has sent a request.
struct UserAgent {
    std::optional<std::string> text;
};

std::optional<std::string>& sharedUserAgent() {
    return kit::shared<UserAgent>().text;
}

// A decoded query part must be text: bytes that are not UTF-8 make the piece unreadable.
std::optional<std::string> decodeQueryPart(std::string_view part) {
    std::optional<std::string> decoded = kit::Url::percentDecode(part);
    if (!decoded || !KBLStringEncoding::isUtf8(*decoded)) return std::nullopt;
    return decoded;
}

// What a parameter's value looks like in a query: strings as they are, other values as their text.
std::string queryText(const kit::Value& value) {
    if (const std::string* text = value.string()) return *text;
    if (value.isNull()) return {};
    return value.description();
}

}  // namespace

std::optional<std::string> ZEBNetworkUtilities::userAgentString() {
    return sharedUserAgent();
}

void ZEBNetworkUtilities::setUserAgentString(std::string_view userAgent) {
    if (userAgent.empty() || sharedUserAgent() == userAgent) return;
    sharedUserAgent() = std::string(userAgent);
}

std::string ZEBNetworkUtilities::encodeURL(std::string_view string) {
    return kit::Url::percentEncode(string);
}

std::optional<kit::Url> ZEBNetworkUtilities::appendQueryParametersToURL(const kit::Value::Map& parameters,
                                                                        const kit::Url& url) {
    std::string text = url.absoluteString();
    std::optional<std::string> query = url.query();
    char separator = query && !query->empty() ? '&' : '?';
    for (const auto& [key, value] : parameters) {
        text += separator;
        separator = '&';
        text += key;
        std::string encoded = encodeURL(queryText(value));
        if (!encoded.empty()) {
            text += '=';
            text += encoded;
        }
    }
    return kit::Url::parse(text);
}

std::optional<kit::Url> ZEBNetworkUtilities::appendQueryKeyValueToURL(std::string_view key,
                                                                      std::optional<std::string_view> value,
                                                                      const kit::Url& url) {
    kit::Value::Map pair;
    pair.set(std::string(key), std::string(value.value_or("")));
    return appendQueryParametersToURL(pair, url);
}

kit::Value::Map ZEBNetworkUtilities::dictionaryFromQueryString(std::optional<std::string_view> query) {
    kit::Value::Map result;
    if (!query) return result;
    std::string_view rest = *query;
    while (!rest.empty()) {
        size_t start = rest.find_first_not_of("&;");
        if (start == std::string_view::npos) break;
        rest.remove_prefix(start);
        size_t end = rest.find_first_of("&;");
        std::string_view piece = rest.substr(0, end);
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end);

        size_t equals = piece.find('=');
        if (equals == std::string_view::npos || piece.find('=', equals + 1) != std::string_view::npos)
            continue;
        std::optional<std::string> key = decodeQueryPart(piece.substr(0, equals));
        std::optional<std::string> value = decodeQueryPart(piece.substr(equals + 1));
        if (!key || !value) continue;
        // Keys are compared without regard to case; only ASCII letters have a case here.
        for (char& c : *key) {
            if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
        }
        result.set(std::move(*key), std::move(*value));
    }
    return result;
}

std::string ZEBNetworkUtilities::urlStringWithoutHashFragment(std::string_view string) {
    size_t hash = string.rfind('#');
    return std::string(hash == std::string_view::npos ? string : string.substr(0, hash));
}

std::optional<std::string> ZEBNetworkUtilities::parameterValueForKeyFromURL(std::string_view key,
                                                                            const kit::Url& url) {
    std::optional<std::string> query = url.query();
    if (!query) return std::nullopt;
    std::string_view rest = *query;
    while (true) {
        size_t amp = rest.find('&');
        std::string_view piece = rest.substr(0, amp);
        size_t equals = piece.find('=');
        if (equals != std::string_view::npos && piece.substr(0, equals) == key) {
            std::string_view value = piece.substr(equals + 1);
            return std::string(value.substr(0, value.find('=')));
        }
        if (amp == std::string_view::npos) return std::nullopt;
        rest.remove_prefix(amp + 1);
    }
}

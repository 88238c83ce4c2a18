#include "kit/Device.h"

#include "kit/port/Platform.h"

#include <algorithm>
#include <string_view>

namespace kit {

Device& Device::current() {
    return Platform::current().device();
}

namespace {
// "pt_BR.UTF-8@euro" becomes "pt-BR"; none for the untranslated locales and empty names.
std::optional<std::string> languageTag(std::string_view locale) {
    locale = locale.substr(0, locale.find_first_of(".@"));
    if (locale.empty() || locale == "C" || locale == "POSIX") return std::nullopt;
    std::string tag(locale);
    std::replace(tag.begin(), tag.end(), '_', '-');
    return tag;
}
}  // namespace

std::vector<std::string> Device::languagesFromLocaleVariables(const char* language, const char* lcAll,
                                                              const char* lcMessages, const char* lang) {
    std::vector<std::string> tags;
    // LANGUAGE names several in order; the others name one, the first that is set wins.
    std::string_view list = language ? language : "";
    while (!list.empty()) {
        size_t colon = list.find(':');
        if (auto tag = languageTag(list.substr(0, colon))) tags.push_back(*tag);
        list.remove_prefix(colon == std::string_view::npos ? list.size() : colon + 1);
    }
    if (tags.empty()) {
        for (const char* variable : {lcAll, lcMessages, lang}) {
            if (!variable || !*variable) continue;
            if (auto tag = languageTag(variable)) tags.push_back(*tag);
            break;
        }
    }
    if (tags.empty()) tags.push_back("en");
    return tags;
}

}  // namespace kit

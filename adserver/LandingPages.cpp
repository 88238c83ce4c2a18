#include "adserver/LandingPages.h"

#include "adserver/CreativeLibrary.h"
#include "adserver/Escape.h"
#include "adserver/HtmlTemplate.h"

#include <fmt/format.h>

namespace {

constexpr std::string_view kHead = R"HTML(<!DOCTYPE html>
<html><head><meta charset="utf-8"><meta name="viewport" content="width=device-width,initial-scale=1">
<title>{{title}}</title>
<style>
body{margin:0;font:16px/1.5 "DejaVu Sans",sans-serif;color:#1b1b1b;background:#f4f1ea}
header{background:#23395d;color:#fff;padding:12px 16px}
main{padding:8px 16px 32px}
a{color:#23395d}
li{margin:6px 0}
label{display:block;margin:8px 0}
</style></head><body><header><h1>{{title}}</h1></header><main>
)HTML";
constexpr std::string_view kTail = "</main></body></html>\n";

constexpr std::string_view kLinks = R"HTML(<p>Everything on this page is a place to go.</p>
<ul>
<li><a href="/landing/long">A long page</a> (scroll it, go back)</li>
<li><a href="/landing/form">A form</a></li>
<li><a href="/landing/media">A page that plays a sound</a></li>
<li><a href="{{store}}">Quiblo Kazoo in the application store</a> (leaves the application)</li>
<li><a href="mailto:hello@quiblo.example?subject=Hello">Mail us</a></li>
<li><a href="tel:+15550100">Call us</a></li>
<li><a href="/landing/links#top" id="top">This page again</a></li>
</ul>
)HTML";

constexpr std::string_view kForm = R"HTML(<form action="/landing/thanks" method="get">
<label>Name <input name="name" value="Sam"></label>
<label>Favourite sound <select name="sound"><option>Drumroll</option><option>Kaboom!</option>
<option>Music 1</option></select></label>
<label><input type="checkbox" name="news" value="yes" checked> Send me new sounds</label>
<button type="submit" id="send">Send</button>
</form>
)HTML";

constexpr std::string_view kMedia = R"HTML(<p>A short tone plays here (press play if it does not start).</p>
<audio id="tone" controls autoplay src="/media/tone.wav"></audio>
<p><a href="/landing/links">Back to the links</a></p>
)HTML";

std::string page(std::string_view title, std::string body, HtmlTemplate::Values values = {}) {
    values.emplace_back("title", std::string(title));
    std::string text(kHead);
    text += body;
    text += kTail;
    return HtmlTemplate::fill(text, values);
}

std::string longBody() {
    std::string body = "<p><a href=\"#end\" id=\"start\">To the end</a></p>\n";
    for (int i = 1; i <= 120; ++i)
        body += fmt::format(
            "<p>Paragraph {}: each sound on the board is a button; press it and it plays "
            "from the start, even while another one is still playing.</p>\n",
            i);
    body += "<p id=\"end\"><a href=\"#start\">Back to the start</a></p>\n";
    return body;
}

std::string thanksBody(const std::vector<QueryString::Pair>& query) {
    std::string body = "<p>Thank you. You sent:</p>\n<dl>\n";
    for (const auto& [name, value] : query)
        body += fmt::format("<dt>{}</dt><dd>{}</dd>\n", Escape::html(Escape::displayable(name)),
                            Escape::html(Escape::displayable(value)));
    body += "</dl>\n<p><a href=\"/landing/form\">Again</a></p>\n";
    return body;
}

}  // namespace

const std::vector<std::string>& LandingPages::names() {
    static const std::vector<std::string> names = {"links", "form", "thanks", "long", "media"};
    return names;
}

std::optional<std::string> LandingPages::page(std::string_view name,
                                              const std::vector<QueryString::Pair>& query) {
    if (name == "links")
        return ::page("Quiblo: places to go", std::string(kLinks), {{"store", CreativeLibrary::storeUrl()}});
    if (name == "form") return ::page("Quiblo: tell us", std::string(kForm));
    if (name == "thanks") return ::page("Quiblo: thank you", thanksBody(query));
    if (name == "long") return ::page("Quiblo: the long story", longBody());
    if (name == "media") return ::page("Quiblo: listen", std::string(kMedia));
    return std::nullopt;
}

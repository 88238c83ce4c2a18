#include "adserver/CreativeLibrary.h"

#include "adserver/HtmlTemplate.h"
#include "adserver/QueryString.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

namespace {

constexpr std::string_view kHead = R"HTML(<!DOCTYPE html>
<html><head><meta charset="utf-8"><meta name="viewport" content="width=device-width,initial-scale=1">
<title>Quiblo house ad</title>
<style>
html,body{margin:0;height:100%;overflow:hidden;font:13px/1.2 "DejaVu Sans",sans-serif}
body.wide{font-size:22px}
body.full{font-size:20px;background:#10213d}
.ad{box-sizing:border-box;display:flex;align-items:center;gap:6px;width:100%;height:100%;padding:0 8px;
  color:#fff;text-decoration:none;background:linear-gradient(90deg,#23395d,#3f72af)}
.title{font-weight:bold;flex:1;min-width:0}
.sub{display:block;font-size:.72em;font-weight:normal;opacity:.85;white-space:nowrap;overflow:hidden;
  text-overflow:ellipsis}
button,.cta{font:inherit;font-size:.75em;font-weight:bold;border:0;border-radius:4px;padding:3px 6px;
  background:#f9c846;color:#23395d;text-decoration:none;cursor:pointer;white-space:nowrap}
.card{box-sizing:border-box;height:100%;display:flex;flex-direction:column;align-items:center;
  justify-content:center;gap:16px;padding:24px;color:#fff;text-align:center}
</style></head>
<body class="{{class}}" data-slot="{{slot}}" data-click="{{click}}" data-track="{{track}}"
 data-landing="{{landing}}" data-store="{{store}}">
)HTML";

// Commands go to the ad client as navigations to vmsg:// addresses; its messages come back through
// QUOR_ReceiveMessage, which shows them and hands them to the creative's own onVantorMessage.
constexpr std::string_view kBridge = R"HTML(<script>
function data(name) { return document.body.getAttribute('data-' + name); }
function vantor(command, params) {
  var pairs = [];
  for (var key in params || {}) pairs.push(encodeURIComponent(key) + '=' + encodeURIComponent(params[key]));
  location.href = 'vmsg://ad/' + command + (pairs.length ? '?' + pairs.join('&') : '');
}
function QUOR_ReceiveMessage(name, info) {
  var out = document.getElementById('message');
  if (out) out.textContent = name + (info ? ' ' + JSON.stringify(info) : '');
  if (window.onVantorMessage) window.onVantorMessage(name, info);
}
</script>
)HTML";

constexpr std::string_view kTail = "</body></html>\n";

struct Creative {
    std::string_view name;
    // Where its click-through lands (a landing page of the server).
    std::string_view landing;
    std::string_view body;
};

constexpr Creative kCreatives[] = {
    {"text", "links",
     R"HTML(<a class="ad" href="{{click}}"><span class="title">Quiblo Pro: 64 more sounds
<span class="sub">Drumrolls, cheers and a kazoo. Tap to hear them.</span></span><span class="cta">Get it</span></a>
)HTML"},
    {"image", "long",
     R"HTML(<a href="{{click}}"><img src="{{image}}" alt="Quiblo Pro" style="display:block;width:100%;height:100%"></a>
)HTML"},
    {"browser", "media",
     R"HTML(<div class="ad"><span class="title">Sound of the week<span class="sub">Opens in the in-app browser</span></span>
<button onclick="vantor('open', {a: 'browser', u: data('click')})">Listen</button>
<a class="cta" href="{{launch}}">Classic</a></div>
)HTML"},
    {"webapp", "form",
     R"HTML(<div class="ad"><span class="title">Quiblo Studio<span class="sub">Make a board of your own</span></span>
<button onclick="vantor('open', {a: 'webapp', u: data('click'), o: 'l'})">Open</button>
<button onclick="vantor('open', {a: 'webapp', html: document.getElementById('page').textContent})">Preview</button>
<script type="text/plain" id="page"><html><body style="font-family:sans-serif;text-align:center">
<h1>Quiblo Studio</h1><p>Record a sound and put it on a button.</p><p><a href="vmsg://ad/close">Close</a></p>
</body></html></script></div>
)HTML"},
    {"expand", "links",
     R"HTML(<div class="ad"><span class="title">One big button<span class="sub" id="message">Tap to fill the screen</span></span>
<button id="expand" onclick="vantor('open', {a: 'expand', o: 'l'})">Expand</button>
<button id="close" style="display:none" onclick="vantor('close')">Close</button></div>
<script>
window.onVantorMessage = function (name) {
  if (name !== 'expanding' && name !== 'collapsed') return;
  document.getElementById('expand').style.display = name === 'expanding' ? 'none' : '';
  document.getElementById('close').style.display = name === 'expanding' ? '' : 'none';
};
</script>
)HTML"},
    {"app", "links",
     R"HTML(<div class="ad"><span class="title">Quiblo Kazoo<span class="sub">A whole app of kazoos</span></span>
<button onclick="vantor('open', {a: 'app', u: data('store')})">Install</button></div>
)HTML"},
    {"contact", "links",
     R"HTML(<div class="ad"><span class="title">Tell a friend<span class="sub">Share your favourite sound</span></span>
<a class="cta" href="mailto:friend@quiblo.example?cc=a@quiblo.example,b@quiblo.example&amp;subject=Quiblo&amp;body=Listen%20to%20this">Mail</a>
<a class="cta" href="sms:+15550100,+15550101?body=Listen%20to%20this">Text</a></div>
)HTML"},
    {"bridge", "links",
     R"HTML(<div class="ad"><span class="title">Bridge<span class="sub" id="message">Tap a button</span></span>
<button onclick="vantor('vibrate')">Buzz</button>
<button onclick="vantor('log', {string: 'hello from ' + data('slot')})">Log</button>
<button onclick="vantor('httpTrack', {u: data('track')})">Track</button>
<button onclick="vantor('canOpenURLs', {urls: 'mailto:,sms:,' + data('store')})">Apps?</button>
<button onclick="vantor('click', {u: data('click')})">Click</button>
<button onclick="vantor('close')">Close</button></div>
)HTML"},
    {"interstitial", "links",
     R"HTML(<div class="card"><h1>Quiblo Pro</h1><p>64 more sounds: drumrolls, cheers and a kazoo.</p>
<a class="cta" href="{{click}}">See them</a>
<p><button onclick="vantor('close')">Close</button> <a class="cta" href="pelko://closecanvas">Not now</a></p></div>
)HTML"},
};

const Creative* find(std::string_view name) {
    for (const Creative& creative : kCreatives)
        if (creative.name == name) return &creative;
    return nullptr;
}

std::string bodyClass(const CreativeLibrary::Context& context, std::string_view name) {
    if (name == "interstitial") return "full";
    return context.width >= 768 ? "wide" : "banner";
}

}  // namespace

const std::vector<std::string>& CreativeLibrary::names() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> out;
        for (const Creative& creative : kCreatives) out.emplace_back(creative.name);
        return out;
    }();
    return names;
}

const std::vector<std::string>& CreativeLibrary::bannerNames() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> out = CreativeLibrary::names();
        out.erase(std::find(out.begin(), out.end(), "interstitial"));
        return out;
    }();
    return names;
}

bool CreativeLibrary::has(std::string_view name) {
    return find(name) != nullptr;
}

std::string CreativeLibrary::nameList() {
    return fmt::format("{}", fmt::join(names(), ", "));
}

std::string CreativeLibrary::clickUrl(const Context& context, std::string_view creative,
                                      std::string_view landing) {
    return fmt::format("{}/click?{}", context.origin,
                       QueryString::build({{"slot", context.slot},
                                           {"c", std::string(creative)},
                                           {"rid", std::to_string(context.requestId)},
                                           {"to", std::string(landing)}}));
}

std::string CreativeLibrary::trackingUrl(const Context& context, std::string_view creative,
                                         std::string_view event) {
    return fmt::format("{}/track?{}", context.origin,
                       QueryString::build({{"ev", std::string(event)},
                                           {"slot", context.slot},
                                           {"c", std::string(creative)},
                                           {"rid", std::to_string(context.requestId)}}));
}

std::string CreativeLibrary::storeUrl() {
    return "appstore://app/org.quiblo.kazoo";
}

std::string CreativeLibrary::html(std::string_view name, const Context& context) {
    const Creative* creative = find(name);
    if (!creative) throw std::invalid_argument("no creative named " + std::string(name));
    std::string click = clickUrl(context, name, creative->landing);
    std::string page;
    page.reserve(kHead.size() + kBridge.size() + creative->body.size() + kTail.size());
    page.append(kHead).append(kBridge).append(creative->body).append(kTail);
    return HtmlTemplate::fill(
        page,
        {{"class", bodyClass(context, name)},
         {"slot", context.slot},
         {"click", click},
         {"track", trackingUrl(context, name, "custom")},
         {"landing", fmt::format("{}/landing/{}", context.origin, creative->landing)},
         {"store", storeUrl()},
         {"image", fmt::format("{}/img/house-{}x{}.svg", context.origin, context.width, context.height)},
         {"launch", "pelko://launch?url=" + QueryString::encode(click)}});
}

std::string CreativeLibrary::brokenPage(const Context& context) {
    // The navigation starts while the page is still being parsed, so the page never finishes: its
    // load ends in the failure of the address it went to.
    return HtmlTemplate::fill(R"HTML(<!DOCTYPE html>
<html data-to="{{to}}"><head><script>location.replace(document.documentElement.getAttribute('data-to'));</script>
</head><body>This creative leaves before it has loaded.</body></html>
)HTML",
                              {{"to", context.origin + "/broken"}});
}

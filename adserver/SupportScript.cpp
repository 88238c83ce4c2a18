#include "adserver/SupportScript.h"

#include "ads/ThirdParty/ZEBJSON.h"

#include <fmt/format.h>

namespace {

// The client pastes the script into a page between <script> tags: nothing in it may close the tag.
std::string safeForScriptTag(std::string text) {
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        if (c == '<')
            out += "\\u003c";
        else
            out += c;
    }
    return out;
}

std::string slotsJson(const SlotTable& slots) {
    kit::Value::Map table;
    for (const Slot& slot : slots.slots()) {
        std::string state = slot.answer == Slot::Answer::Off      ? "off"
                            : slot.answer == Slot::Answer::Errors ? "errors"
                                                                  : "serve";
        table.set(slot.id, kit::Value::Map{{"state", state}, {"type", slot.typeWord()}});
    }
    return safeForScriptTag(ZEBJSON().stringWithObjectError(table).value_or("{}"));
}

constexpr std::string_view kScript =
    R"JS(// sdk-core-v40.js: builds the Vantor ad request URL and answers the ad client through its bridge.
(function () {
  var SERVER = @SERVER@;
  var SLOTS = @SLOTS@;

  function own(object, key) { return Object.prototype.hasOwnProperty.call(object, key); }

  // An answer is a navigation to vmsg://bridge/<command>?<parameters>, made once this page has run.
  function answer(command, params) {
    var pairs = [];
    for (var key in params) if (own(params, key)) {
      pairs.push(encodeURIComponent(key) + '=' + encodeURIComponent(params[key]));
    }
    var url = 'vmsg://bridge/' + command + (pairs.length ? '?' + pairs.join('&') : '');
    setTimeout(function () { window.location.href = url; }, 0);
  }

  // Strings as they are; maps and lists as JSON text; numbers and booleans as text.
  function text(value) {
    if (value === null || value === undefined) return '';
    if (typeof value === 'object') return JSON.stringify(value);
    return String(value);
  }

  window.QUOR_buildAdURL = function (params) {
    if (params === null || typeof params !== 'object' || Array.isArray(params)) {
      answer('invalidRequest', {reason: 'the parameters are not a map'});
      return;
    }
    var slot = params.slotname;
    if (typeof slot !== 'string' || slot === '') {
      answer('invalidRequest', {reason: 'no slotname'});
      return;
    }
    if (!own(SLOTS, slot)) {
      answer('invalidRequest', {reason: 'unknown slotname', slotname: slot});
      return;
    }
    var config = SLOTS[slot];
    if (config.state === 'off') {
      answer('unableToServe', {reason: 'the slot is switched off', slotname: slot});
      return;
    }
    if (config.state === 'errors') {
      answer('loadAdURL', {errors: 'the slot answers with errors', slotname: slot});
      return;
    }
    var pairs = [];
    for (var key in params) if (own(params, key)) {
      pairs.push(encodeURIComponent(key) + '=' + encodeURIComponent(text(params[key])));
    }
    answer('loadAdURL', {url: SERVER + '/ad?' + pairs.join('&'), type: config.type});
  };
})();
)JS";

}  // namespace

std::string SupportScript::text(const SlotTable& slots, std::string_view origin) {
    std::string script(kScript);
    auto replace = [&](std::string_view place, const std::string& value) {
        script.replace(script.find(place), place.size(), value);
    };
    replace("@SERVER@",
            safeForScriptTag(ZEBJSON().stringWithFragmentError(kit::Value(origin)).value_or("\"\"")));
    replace("@SLOTS@", slotsJson(slots));
    return script;
}

std::string SupportScript::broken() {
    return "// sdk-core-v40.js\nwindow.QUOR_buildAdURL = function () { throw new Error('support script is "
           "broken'); "
           "};\n";
}

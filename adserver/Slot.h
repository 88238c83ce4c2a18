#pragma once

#include "adserver/Fault.h"
#include "kit/Value.h"

#include <optional>
#include <string>
#include <vector>

// One ad slot (ad unit identifier) and how the server answers for it.
struct Slot {
    enum class Answer {
        Creative,   // a house creative with the response headers
        Mediation,  // a mediation document (application/json)
        NoFill,     // an empty creative
        Errors,     // the support script answers with "errors"
        Off,        // switched off: the support script answers "unableToServe"
    };

    std::string id;
    Answer answer = Answer::Creative;
    int width = 320, height = 50;
    // Creatives served in turn; all house banner creatives when none are named.
    std::vector<std::string> creatives;
    // "X-Quor-Refresh-Rate"; 0 sends no header.
    double refreshSeconds = 30;
    // "X-Quor-Orientation", sent as it is (the client ignores words it does not know); empty sends none.
    std::string orientation = "any";
    // "X-Quor-Interstitial-Timeout"; 0 sends none.
    double interstitialTimeout = 5;
    // Whether answers carry "X-Quor-Click-Tracking-Urls".
    bool clickTracking = true;
    // The type word the support script answers with the ad URL; by answer when empty.
    std::string type;
    // Put on every ad answer of the slot.
    std::optional<Fault::Kind> fault;
    // Top-level keys of the mediation document that replace the server's own, verbatim, so that any
    // document (malformed ones too) can be served.
    kit::Value::Map mediation;

    // The type word: the configured one, "tessar" for mediation, "pelko" otherwise.
    std::string typeWord() const;
    std::string size() const;

    // From a slot of a configuration file; none with *error set when a key is unknown or ill-typed.
    static std::optional<Slot> fromJson(std::string id, const kit::Value& value, std::string* error);
    static std::optional<Answer> answerNamed(std::string_view name);
};

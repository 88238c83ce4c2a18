#pragma once

#include "kit/Value.h"

#include <optional>
#include <string>
#include <string_view>

// Small conveniences of the ad client.
class ZEBMacros {
public:
    // The JSON text of an object or array with the default writer options; "" when it cannot be
    // written (a scalar at the top, a value JSON cannot express). None for none.
    static std::string jsonify(const kit::Value& object);
    static std::optional<std::string> jsonify(const kit::Value* object);

    // The object that the JSON text holds; none for none, for unreadable text and when the text holds
    // anything but an object (an array included).
    static std::optional<kit::Value::Map> readJson(std::optional<std::string_view> string);
};

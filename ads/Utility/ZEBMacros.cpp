#include "ads/Utility/ZEBMacros.h"

#include "ads/ThirdParty/ZEBJSON.h"

std::string ZEBMacros::jsonify(const kit::Value& object) {
    ZEBJSON writer;
    return writer.stringWithObjectError(object).value_or(std::string());
}

std::optional<std::string> ZEBMacros::jsonify(const kit::Value* object) {
    if (!object) return std::nullopt;
    return jsonify(*object);
}

std::optional<kit::Value::Map> ZEBMacros::readJson(std::optional<std::string_view> string) {
    if (!string) return std::nullopt;
    ZEBJSON reader;
    std::optional<kit::Value> value = reader.objectWithStringError(string);
    if (!value || !value->isMap()) return std::nullopt;
    return std::move(*value->map());
}

#include "ads/Timing/ZEBTiming.h"

#include "kit/RunLoop.h"

#include <fmt/format.h>

#include <cmath>
#include <limits>

ZEBTiming::ZEBTiming(std::string category) : category_(std::move(category)) {}

std::shared_ptr<ZEBTiming> ZEBTiming::createWithDictionaryRepresentation(
    const kit::Value::Map& representation) {
    const kit::Value* category = representation.find("category");
    auto timing =
        std::make_shared<ZEBTiming>(category && category->string() ? *category->string() : std::string());
    auto number = [&](std::string_view key) {
        const kit::Value* value = representation.find(key);
        return value ? value->number().value_or(0.0) : 0.0;
    };
    timing->startSeconds_ = number("start");
    timing->endSeconds_ = number("end");
    const kit::Value* userData = representation.find("userData");
    if (userData && userData->map()) timing->userData_ = *userData->map();
    return timing;
}

kit::Value::Map ZEBTiming::dictionaryRepresentation() const {
    kit::Value::Map representation{{"category", category_}, {"start", startSeconds_}, {"end", endSeconds_}};
    if (userData_) representation.set("userData", *userData_);
    return representation;
}

double ZEBTiming::counter() {
    return kit::RunLoop::main().now();
}

void ZEBTiming::start() {
    startSeconds_ = counter();
    endSeconds_ = 0;
}

void ZEBTiming::end() {
    if (startSeconds_ > 0) endSeconds_ = counter();
}

void ZEBTiming::reset() {
    startSeconds_ = 0;
    endSeconds_ = 0;
}

bool ZEBTiming::isActive() const {
    return startSeconds_ > 0 && endSeconds_ == 0;
}

uint32_t ZEBTiming::elapsedMilliseconds() const {
    if (startSeconds_ == 0 && endSeconds_ == 0) return 0;
    double milliseconds =
        (endSeconds_ >= startSeconds_ ? endSeconds_ - startSeconds_ : counter() - startSeconds_) * 1000;
    // Stored clock values may come from before a restart of the machine: keep the result in range.
    if (!(milliseconds > 0)) return 0;
    if (milliseconds >= static_cast<double>(std::numeric_limits<uint32_t>::max()))
        return std::numeric_limits<uint32_t>::max();
    return static_cast<uint32_t>(milliseconds);
}

std::string ZEBTiming::elapsedMillisecondsString() const {
    // Written as a signed number, as the server has always read it.
    return fmt::format("{}", static_cast<int32_t>(elapsedMilliseconds()));
}

void ZEBTiming::setValueForKey(kit::Value value, std::string key) {
    if (!userData_) userData_.emplace();
    userData_->set(std::move(key), std::move(value));
}

const kit::Value* ZEBTiming::valueForKey(std::string_view key) const {
    return userData_ ? userData_->find(key) : nullptr;
}

void ZEBTiming::removeValueForKey(std::string_view key) {
    if (userData_) userData_->erase(key);
}

kit::Value::Map ZEBTiming::keysAndValues() const {
    return userData_.value_or(kit::Value::Map{});
}

std::shared_ptr<ZEBTiming> ZEBTiming::copy() const {
    return createWithDictionaryRepresentation(dictionaryRepresentation());
}

std::string ZEBTiming::description() const {
    return fmt::format("{} ({}): {}", className(), static_cast<const void*>(this),
                       kit::Value(dictionaryRepresentation()).description());
}

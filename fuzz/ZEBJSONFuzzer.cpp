// Reads arbitrary bytes with both readers and writes back whatever was read.
#include "ads/ThirdParty/ZEBJSON.h"

#include <cstdlib>
#include <string_view>

namespace {

void check(bool condition) {
    if (!condition) std::abort();
}

void checkError(const std::shared_ptr<const kit::Error>& error) {
    check(error != nullptr);
    check(error->domain() == ZEBJSON::kErrorDomain);
    check(error->code() >= 1 && error->code() <= 12);
    check(!error->localizedDescription().empty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string_view text(reinterpret_cast<const char*>(data), size);
    ZEBJSON json;
    std::shared_ptr<const kit::Error> error;
    auto fragment = json.fragmentWithStringError(text, &error);
    if (!fragment) checkError(error);
    auto object = json.objectWithStringError(text, &error);
    if (!object) checkError(error);
    // The two readers agree: the object reader accepts exactly the fragments that are containers.
    check(object.has_value() == (fragment && (fragment->isArray() || fragment->isMap())));
    if (!fragment) return 0;
    if (object) check(*object == *fragment);

    // Write, read again: the same value, and writing that gives the same text.
    for (int options = 0; options < 4; ++options) {
        ZEBJSON writer;
        writer.setSortKeys(options & 1);
        writer.setHumanReadable(options & 2);
        auto written = writer.stringWithFragmentError(*fragment, &error);
        check(written.has_value());
        check(writer.depth() == 0);
        auto again = json.fragmentWithStringError(*written, &error);
        check(again.has_value());
        check(*again == *fragment);
        check(writer.stringWithFragmentError(*again) == written);
    }
    return 0;
}

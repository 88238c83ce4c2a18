#pragma once

#include "kit/Error.h"
#include "kit/Object.h"
#include "kit/Value.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

// Reads and writes JSON text (RFC 8259) on kit::Value.
//
// Reading: objects become insertion-ordered maps (a repeated key keeps its first place and its last
// value), numbers become exact decimals (kit::Decimal, up to 38 significant digits, so
// 10000000000000000999 and 1.000000000000000005 come back digit for digit), strings are checked to be
// UTF-8. Whitespace is the C "space" class (vertical tab and form feed included).
//
// Writing: keys in map order unless sortKeys; numbers in plain decimal text; strings with only the
// characters JSON requires escaped. Dates and data are written as the string of their description.
//
// Errors come back as kit::Error in kErrorDomain with the codes below and a fixed message. A failure
// inside an array element, an object key or an object value is wrapped once, by the innermost
// container, in its own code-3 error with the original as underlying error; errors of a container's
// own structure (depth, trailing comma, missing separator, end of input) are not wrapped.
class ZEBJSON : public kit::Object {
public:
    static constexpr const char* kErrorDomain = "com.vantor.ads.ZEBJSON";

    enum ErrorCode : int64_t {
        kErrorUnsupported = 1,    // writer: a value JSON cannot express
        kErrorNumber = 2,         // malformed or unrepresentable number
        kErrorSyntax = 3,         // unexpected character, or a failed element, key or value
        kErrorTopLevel = 4,       // scalar at the top where only an object or array is allowed
        kErrorControlChar = 5,    // unescaped control character in a string
        kErrorUnicode = 6,        // bad \u escape or malformed UTF-8
        kErrorDepth = 7,          // nesting deeper than maxDepth
        kErrorEscape = 8,         // unknown escape
        kErrorTrailingComma = 9,  // comma before a closing bracket
        kErrorGarbage = 10,       // more than whitespace after the value
        kErrorEndOfInput = 11,    // input ends inside a string, array or object
        kErrorNoInput = 12,       // no text at all
    };

    ZEBJSON();
    ~ZEBJSON() override;

    // Deepest nesting the reader accepts; 0 means no limit. The reader keeps its own stack, so even
    // without a limit deep input cannot overflow the call stack.
    unsigned maxDepth() const { return maxDepth_; }
    void setMaxDepth(unsigned maxDepth) { maxDepth_ = maxDepth; }
    bool sortKeys() const { return sortKeys_; }
    void setSortKeys(bool sortKeys) { sortKeys_ = sortKeys; }
    bool humanReadable() const { return humanReadable_; }
    void setHumanReadable(bool humanReadable) { humanReadable_ = humanReadable; }
    // Nesting reached by the last read or write (back to 0 after a complete one).
    int depth() const { return depth_; }

    // Readers: none with *error set (when error is given) on failure.
    std::optional<kit::Value> objectWithStringError(std::optional<std::string_view> text,
                                                    std::shared_ptr<const kit::Error>* error = nullptr);
    std::optional<kit::Value> fragmentWithStringError(std::optional<std::string_view> text,
                                                      std::shared_ptr<const kit::Error>* error = nullptr);
    std::optional<kit::Value> objectWithStringAllowScalarError(
        std::optional<std::string_view> text, bool allowScalar,
        std::shared_ptr<const kit::Error>* error = nullptr);

    // Writers.
    std::optional<std::string> stringWithObjectError(const kit::Value& value,
                                                     std::shared_ptr<const kit::Error>* error = nullptr);
    std::optional<std::string> stringWithFragmentError(const kit::Value& value,
                                                       std::shared_ptr<const kit::Error>* error = nullptr);
    std::optional<std::string> stringWithObjectAllowScalarError(
        const kit::Value& value, bool allowScalar, std::shared_ptr<const kit::Error>* error = nullptr);

    // The codec's errors: a code and a message (the localized description), optionally wrapping the
    // error that caused it.
    static std::shared_ptr<const kit::Error> errorWithCodeDescription(int64_t code, std::string description);
    static std::shared_ptr<const kit::Error> errorWithCodeUnderlyingDescription(
        int64_t code, std::shared_ptr<const kit::Error> underlying, std::string description);

private:
    // The reader's stacks, kept from one call to the next so that their memory is reused.
    struct Stacks;
    std::unique_ptr<Stacks> stacks_;
    unsigned maxDepth_ = 512;
    bool sortKeys_ = false;
    bool humanReadable_ = false;
    int depth_ = 0;
};

#include "kit/PropertyList.h"

#include <plist/plist.h>

#include <cstdlib>
#include <fstream>
#include <limits>
#include <memory>
#include <sstream>

namespace kit {

namespace {
// Property-list dates count from 2001-01-01 UTC.
constexpr double kReferenceDateSince1970 = 978307200.0;

struct FreeWithFree {
    void operator()(void* p) const { std::free(p); }
};
using Owned = std::unique_ptr<char, FreeWithFree>;

// Property lists nest deeply only when they are hostile; deeper ones are refused whole.
constexpr int kMaxDepth = 256;

std::optional<Value> convert(plist_t node, int depth) {
    if (depth > kMaxDepth) return std::nullopt;
    switch (plist_get_node_type(node)) {
        case PLIST_BOOLEAN: {
            uint8_t b = 0;
            plist_get_bool_val(node, &b);
            return Value(b != 0);
        }
        case PLIST_UINT: {
            // Integers are kept as 64-bit patterns; the signed reading is the usual one.
            uint64_t u = 0;
            plist_get_uint_val(node, &u);
            return Value(static_cast<long long>(u));
        }
        case PLIST_REAL: {
            double d = 0;
            plist_get_real_val(node, &d);
            return Value(d);
        }
        case PLIST_STRING:
        case PLIST_KEY: {
            char* raw = nullptr;
            if (plist_get_node_type(node) == PLIST_STRING) {
                plist_get_string_val(node, &raw);
            } else {
                plist_get_key_val(node, &raw);
            }
            Owned text(raw);
            return Value(std::string(text ? text.get() : ""));
        }
        case PLIST_DATA: {
            char* raw = nullptr;
            uint64_t length = 0;
            plist_get_data_val(node, &raw, &length);
            Owned bytes(raw);
            auto* begin = reinterpret_cast<const uint8_t*>(bytes.get());
            return Value(Value::Data(begin, begin + (bytes ? length : 0)));
        }
        case PLIST_DATE: {
            int32_t sec = 0, usec = 0;
            plist_get_date_val(node, &sec, &usec);
            return Value(Value::Date{kReferenceDateSince1970 + sec + usec / 1e6});
        }
        case PLIST_ARRAY: {
            Value::Array array;
            uint32_t size = plist_array_get_size(node);
            array.reserve(size);
            for (uint32_t i = 0; i < size; ++i) {
                auto item = convert(plist_array_get_item(node, i), depth + 1);
                if (!item) return std::nullopt;
                array.push_back(std::move(*item));
            }
            return Value(std::move(array));
        }
        case PLIST_DICT: {
            Value::Map map;
            plist_dict_iter iter = nullptr;
            plist_dict_new_iter(node, &iter);
            std::unique_ptr<void, FreeWithFree> ownedIter(iter);
            while (true) {
                char* rawKey = nullptr;
                plist_t child = nullptr;
                plist_dict_next_item(node, iter, &rawKey, &child);
                Owned key(rawKey);
                if (!child) break;
                auto item = convert(child, depth + 1);
                if (!item) return std::nullopt;
                map.set(key ? key.get() : "", std::move(*item));
            }
            return Value(std::move(map));
        }
        default:
            // Keyed-archive identifiers and anything newer have no Value of their own.
            return Value();
    }
}
}  // namespace

std::optional<Value> PropertyList::read(std::string_view bytes) {
    if (bytes.empty() || bytes.size() > std::numeric_limits<uint32_t>::max()) return std::nullopt;
    plist_t root = nullptr;
    plist_from_memory(bytes.data(), static_cast<uint32_t>(bytes.size()), &root);
    if (!root) return std::nullopt;
    std::unique_ptr<void, decltype(&plist_free)> owned(root, plist_free);
    return convert(root, 0);
}

std::optional<Value> PropertyList::readFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return std::nullopt;
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return read(bytes.str());
}

}  // namespace kit

// Ownership and small accessors for libplist nodes, so that no libplist call site has to
// remember plist_free or the C API's out-parameters.
#pragma once

#include <plist/plist.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vn::coding_internal {

struct PlistDeleter {
    void operator()(plist_t node) const { plist_free(node); }
};
// Owns a node that has no parent; release() it when handing it to a container.
using PlistPtr = std::unique_ptr<void, PlistDeleter>;

inline bool isType(plist_t node, plist_type type) {
    return node && plist_get_node_type(node) == type;
}

// The text of a string node; absent for any other node.
inline std::optional<std::string_view> stringOf(plist_t node) {
    if (!isType(node, PLIST_STRING)) return std::nullopt;
    std::uint64_t length = 0;
    const char* text = plist_get_string_ptr(node, &length);
    if (!text) return std::nullopt;
    return std::string_view(text, static_cast<std::size_t>(length));
}

// Calls visit(key, value) for every entry of a dictionary node, in the node's order.
template <typename Visit>
void forEachDictionaryItem(plist_t dictionary, Visit&& visit) {
    plist_dict_iter iterator = nullptr;
    plist_dict_new_iter(dictionary, &iterator);
    for (;;) {
        char* key = nullptr;
        plist_t value = nullptr;
        plist_dict_next_item(dictionary, iterator, &key, &value);
        std::string name = key ? key : "";
        std::free(key);
        if (!value) break;
        visit(std::move(name), value);
    }
    std::free(iterator);
}

// The reference of a UID node; absent for any other node.
inline std::optional<std::uint64_t> uidOf(plist_t node) {
    if (!isType(node, PLIST_UID)) return std::nullopt;
    std::uint64_t uid = 0;
    plist_get_uid_val(node, &uid);
    return uid;
}

// The items of an array node in order (none for other nodes). libplist keeps arrays as linked
// lists, so indexing item by item would make every walk over an array quadratic.
inline std::vector<plist_t> arrayItems(plist_t array) {
    std::vector<plist_t> items;
    if (!isType(array, PLIST_ARRAY)) return items;
    items.reserve(plist_array_get_size(array));
    plist_array_iter iterator = nullptr;
    plist_array_new_iter(array, &iterator);
    for (plist_t item = nullptr;;) {
        plist_array_next_item(array, iterator, &item);
        if (!item) break;
        items.push_back(item);
    }
    std::free(iterator);
    return items;
}

inline plist_t dictItem(plist_t dictionary, const std::string& key) {
    return isType(dictionary, PLIST_DICT) ? plist_dict_get_item(dictionary, key.c_str()) : nullptr;
}

// A key as stored: keys beginning with "$" get one more "$", so they never collide with the
// archive's bookkeeping keys ("$class", "$classname").
inline std::string escapedKey(std::string_view key) {
    std::string stored;
    if (!key.empty() && key.front() == '$') stored += '$';
    stored += key;
    return stored;
}

}  // namespace vn::coding_internal

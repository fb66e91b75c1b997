// A keyed archive's property list, checked and opened: the "$top" dictionary and the
// "$objects" table that UIDs index. Shared by the unarchiver and the archive description.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "coding/PlistNode.h"
#include "vn/platform/Value.h"

namespace vn::coding_internal {

class ArchiveDocument {
  public:
    // Opens bytes as a keyed archive; absent with *reason set when they are not one.
    static std::optional<ArchiveDocument> open(const Data& bytes, std::string& reason);

    plist_t top() const { return top_; }
    std::uint64_t objectCount() const { return objects_.size(); }
    // The entry a UID refers to; uid must be below objectCount().
    plist_t object(std::uint64_t uid) const { return objects_[static_cast<std::size_t>(uid)]; }

  private:
    ArchiveDocument() = default;

    PlistPtr root_;
    plist_t top_ = nullptr;
    std::vector<plist_t> objects_;
};

// The text of a string node as a std::string; absent for other nodes.
std::optional<std::string> textOf(plist_t node);
// A plain (non-UID, non-container) node as a Value: booleans, integers (16-byte ones above
// the signed range as unsigned), reals, strings, data and dates. Absent for other nodes.
std::optional<Value> plainValueOf(plist_t node);

// The decimal value of an NSDecimalNumber entry's fields; absent when they do not hold one.
std::optional<Decimal> decimalOf(plist_t entry);

}  // namespace vn::coding_internal

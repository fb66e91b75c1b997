// Writing a libplist tree as a binary property list ("bplist00").
//
// libplist 2.2's own writer finds objects to share through a hash table with a fixed number of
// buckets, so its time grows with the square of the number of objects once there are more than
// a few thousand (a keyed archive has one or more per value). This writer keeps the same layout
// (objects in depth-first order from the root, equal strings and keys stored once) in time
// linear in the size of the tree. Its recursion follows the tree's container nesting, which is
// shallow in a keyed archive.
#pragma once

#include <optional>
#include <unordered_set>

#include "coding/PlistNode.h"
#include "vn/platform/Value.h"

namespace vn::coding_internal {

// The bytes of the tree under root. Integer nodes listed in sixteenByteIntegers are written in
// the format's 16-byte form (their value is the node's unsigned 64-bit value). Absent when the
// tree holds a node the format cannot hold (a string that is not valid UTF-8) or a node kind
// the writer does not know.
std::optional<Data> writeBinaryPropertyList(plist_t root,
                                            const std::unordered_set<plist_t>& sixteenByteIntegers);

}  // namespace vn::coding_internal

// A structural check of binary property-list bytes, run before libplist sees them.
//
// libplist 2.2 reads binary property lists recursively and copies every shared reference, so
// a deeply nested list overflows the stack and a list that references the same containers
// over and over expands exponentially. This check walks the object table without recursion
// and rejects such input, together with anything whose offsets, sizes or references point
// outside the bytes, before the library is asked to build a tree.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace vn::coding_internal {

// Deepest container nesting accepted inside the property list itself. Keyed archives are
// flat (nesting goes through UIDs), so a handful of levels is all they use.
inline constexpr int kMaxPropertyListDepth = 64;

// Absent when the bytes are a well-formed binary property list that is safe to hand to
// libplist: header and trailer present, every offset and reference inside the bytes, every
// dictionary key a string, every string free of NUL characters and convertible to UTF-8
// (ASCII strings 7-bit, UTF-16 strings without lone surrogates), no container containing itself,
// nesting within kMaxPropertyListDepth, and the expanded tree (shared references counted each time)
// no larger than the input has bytes. Otherwise the reason, in English.
std::optional<std::string> checkBinaryPropertyList(const std::uint8_t* bytes, std::size_t size);

}  // namespace vn::coding_internal

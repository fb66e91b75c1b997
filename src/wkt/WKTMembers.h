// What the geometry classes share about their member lists: the checked appending with its
// exceptions, value equality, hashing, deep copies and the text of members.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/internal/HashCombine.h"
#include "vn/platform/Value.h"
#include "vn/wkt/WKTGeometry.h"

namespace vn::wkt_internal {

// The exception name and reasons of one member-setting method.
struct MemberRules {
    std::string_view exceptionName;
    std::string_view nilReason;
    std::string_view classReason;
    std::string_view dimensionsReason;
};

// Raises vn::Exception(name, reason).
[[noreturn]] void raise(std::string_view name, std::string_view reason);

// Appends "%f" of value (six decimals, decimal point whatever the process locale).
void appendFixed(std::string& out, double value);

// Hash of a coordinate that agrees with ==: 0.0 and -0.0 hash alike.
inline std::size_t coordinateHash(double value) {
    return std::hash<double>{}(value == 0 ? 0.0 : value);
}

template <class Member>
using MemberList = std::vector<std::shared_ptr<Member>>;

// Checks one candidate of a list being set: the member class first, then the dimensions
// against those of the list's first element.
template <class Member>
void checkMember(const std::shared_ptr<Member>& member, std::size_t index,
                 std::int32_t& firstDimensions, const MemberRules& rules) {
    if (!member) raise(rules.exceptionName, rules.classReason);
    if (index == 0) {
        firstDimensions = member->dimensions();
    } else if (member->dimensions() != firstDimensions) {
        raise(rules.exceptionName, rules.dimensionsReason);
    }
}

// Appends checked members to list and sets owner's dimensions to the first member's (0 for an
// empty list of candidates). Nothing is appended when a check raises.
template <class Member>
void appendMembers(MemberList<Member>& list, WKTGeometry& owner, MemberList<Member> members,
                   const MemberRules& rules) {
    std::int32_t firstDimensions = 0;
    for (std::size_t i = 0; i < members.size(); ++i)
        checkMember(members[i], i, firstDimensions, rules);
    if (list.empty()) {
        list = std::move(members);
    } else {
        list.insert(list.end(), std::make_move_iterator(members.begin()),
                    std::make_move_iterator(members.end()));
    }
    owner.setDimensions(firstDimensions);
}

// The loosely typed form: nil raises the nil reason; anything but an array of Member objects
// raises the class reason.
template <class Member>
void appendMembers(MemberList<Member>& list, WKTGeometry& owner, const Value& candidates,
                   const MemberRules& rules) {
    if (candidates.isNil()) raise(rules.exceptionName, rules.nilReason);
    const Value::Array* array = candidates.array();
    if (!array) raise(rules.exceptionName, rules.classReason);
    MemberList<Member> members;
    members.reserve(array->size());
    std::int32_t firstDimensions = 0;
    for (const Value& candidate : *array) {
        members.push_back(candidate.objectAs<Member>());
        checkMember(members.back(), members.size() - 1, firstDimensions, rules);
    }
    appendMembers(list, owner, std::move(members), rules);
}

template <class Member>
bool membersEqual(const MemberList<Member>& a, const MemberList<Member>& b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (!a[i]->isEqual(*b[i])) return false;
    }
    return true;
}

template <class Member>
std::size_t membersHash(std::int32_t dimensions, const MemberList<Member>& list) {
    std::size_t seed = std::hash<std::int32_t>{}(dimensions);
    for (const auto& member : list) seed = platform_internal::hashCombine(seed, member->hash());
    return seed;
}

template <class Member>
MemberList<Member> copiedMembers(const MemberList<Member>& list) {
    MemberList<Member> copies;
    copies.reserve(list.size());
    for (const auto& member : list)
        copies.push_back(std::static_pointer_cast<Member>(member->copy()));
    return copies;
}

// The members' descriptions joined with ", ", each inside "(" ")" when parenthesised.
template <class Member>
std::string joinedDescriptions(const MemberList<Member>& list, bool parenthesised) {
    std::string text;
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (i > 0) text += ", ";
        if (parenthesised) text += '(';
        text += list[i]->description();
        if (parenthesised) text += ')';
    }
    return text;
}

// The Well-Known Text of a list geometry: emptyText without members, else the 2- or
// 3-dimensional keyword (any dimensions other than 2 count as 3) before "(description)".
std::string listWKT(std::size_t memberCount, std::int32_t dimensions, std::string_view keyword2D,
                    std::string_view keyword3D, std::string_view emptyText,
                    const std::string& description);

}  // namespace vn::wkt_internal

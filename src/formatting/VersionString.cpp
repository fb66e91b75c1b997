#include "vn/formatting/VersionString.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <string>
#include <vector>

namespace vn::VNUtilities {
namespace {

// Each component's leading digits, without leading zeros ("" stands for 0).
std::vector<std::string_view> components(std::string_view version) {
    const auto first = version.find_first_not_of(" \t");
    version = first == std::string_view::npos ? std::string_view() : version.substr(first);
    std::vector<std::string_view> result;
    while (true) {
        const std::size_t dot = version.find('.');
        std::string_view piece = version.substr(0, dot);
        std::size_t digits = 0;
        while (digits < piece.size() && piece[digits] >= '0' && piece[digits] <= '9') ++digits;
        piece = piece.substr(0, digits);
        while (!piece.empty() && piece.front() == '0') piece.remove_prefix(1);
        result.push_back(piece);
        if (dot == std::string_view::npos) break;
        version.remove_prefix(dot + 1);
    }
    return result;
}

std::uint64_t saturatedComponent(std::string_view digits) {
    constexpr std::uint64_t kMaximum = std::numeric_limits<std::uint16_t>::max();
    if (digits.size() > 5) return kMaximum;
    std::uint64_t value = 0;
    for (const char c : digits) value = value * 10 + static_cast<std::uint64_t>(c - '0');
    return std::min(value, kMaximum);
}

int compareDigits(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return a.size() < b.size() ? -1 : 1;
    const int order = a.compare(b);
    return order < 0 ? -1 : (order > 0 ? 1 : 0);
}

}  // namespace

std::uint64_t numericRepresentationFromVersionString(std::string_view version) {
    const std::vector<std::string_view> parts = components(version);
    std::uint64_t result = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        result = (result << 16) | (i < parts.size() ? saturatedComponent(parts[i]) : 0);
    }
    return result;
}

NSComparisonResult comparaVersionString(std::string_view version, std::string_view toVersion) {
    const std::vector<std::string_view> left = components(version);
    const std::vector<std::string_view> right = components(toVersion);
    for (std::size_t i = 0; i < std::max(left.size(), right.size()); ++i) {
        const int order =
            compareDigits(i < left.size() ? left[i] : "", i < right.size() ? right[i] : "");
        if (order != 0) return order < 0 ? NSOrderedAscending : NSOrderedDescending;
    }
    return NSOrderedSame;
}

}  // namespace vn::VNUtilities

// Version strings ("1.2", "10.0.3", "2.1b4"): a comparable number for a version, and the
// ordering of two versions.
//
// A version is read as components separated by "."; each component's value is its leading
// decimal digits (none: 0), so "2.1b4" is 2.1 and " 3 " is 3. Missing components are 0:
// "1.2" and "1.2.0" are the same version. Pure; safe from any thread.
#pragma once

#include <cstdint>
#include <string_view>

namespace vn {

// The platform's ordering results with their raw values.
enum NSComparisonResult : int {
    NSOrderedAscending = -1,
    NSOrderedSame = 0,
    NSOrderedDescending = 1,
};

namespace VNUtilities {

// The version packed into 64 bits, 16 bits per component for the first four components
// (major in the highest bits), each saturating at 65535, later components ignored: so a
// larger version gives a larger number. "1.2.3" gives 0x0001000200030000.
std::uint64_t numericRepresentationFromVersionString(std::string_view version);

// The ordering of version against other, component by component, without limit on the
// number or size of components: "1.9" < "1.10", "1.2" == "1.2.0".
NSComparisonResult comparaVersionString(std::string_view version, std::string_view toVersion);

}  // namespace VNUtilities
}  // namespace vn

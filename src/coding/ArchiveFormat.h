// The names and fixed values of the platform's keyed-archive format, shared by the archiver,
// the unarchiver and the archive description.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vn/platform/Decimal.h"
#include "vn/platform/Value.h"

namespace vn::coding_internal {

inline constexpr std::string_view kArchiverKey = "$archiver";
inline constexpr std::string_view kArchiverName = "NSKeyedArchiver";
inline constexpr std::string_view kVersionKey = "$version";
inline constexpr std::uint64_t kVersion = 100000;
inline constexpr std::string_view kTopKey = "$top";
inline constexpr std::string_view kObjectsKey = "$objects";
inline constexpr std::string_view kNullEntry = "$null";
inline constexpr std::string_view kClassKey = "$class";
inline constexpr std::string_view kClassNameKey = "$classname";
inline constexpr std::string_view kClassesKey = "$classes";
inline constexpr std::string_view kRootKey = "root";

inline constexpr std::string_view kObjectsField = "NS.objects";
inline constexpr std::string_view kKeysField = "NS.keys";
inline constexpr std::string_view kTimeField = "NS.time";
inline constexpr std::string_view kStringField = "NS.string";
inline constexpr std::string_view kDataField = "NS.data";

inline constexpr std::string_view kDecimalExponentField = "NS.exponent";
inline constexpr std::string_view kDecimalLengthField = "NS.length";
inline constexpr std::string_view kDecimalNegativeField = "NS.negative";
inline constexpr std::string_view kDecimalCompactField = "NS.compact";
inline constexpr std::string_view kDecimalByteOrderField = "NS.mantissa.bo";
inline constexpr std::string_view kDecimalMantissaField = "NS.mantissa";
// NS.mantissa.bo value for 16-bit words stored little-endian.
inline constexpr std::int64_t kDecimalLittleEndian = 1;
inline constexpr std::size_t kDecimalMantissaBytes = 16;

// A class description: "$classname" and "$classes".
struct ClassDescription {
    std::string name;
    std::vector<std::string> hierarchy;
};

ClassDescription arrayClass();
ClassDescription dictionaryClass();
ClassDescription dateClass();
ClassDescription nullClass();
ClassDescription decimalClass();

// The platform's decimal value in archived form.
struct ArchivedDecimal {
    std::int64_t exponent = 0;
    std::int64_t length = 0;  // 16-bit mantissa words in use
    bool negative = false;
    Data mantissa;  // kDecimalMantissaBytes, little-endian words, least significant first
};

ArchivedDecimal archiveDecimal(const Decimal& value);
// Absent when the fields do not describe a decimal (exponent out of range, length above 8,
// mantissa longer than 16 bytes or shorter than its length, or words beyond the length that
// are not zero). A shorter mantissa is read as if padded with zero bytes.
std::optional<Decimal> unarchiveDecimal(const ArchivedDecimal& archived);

}  // namespace vn::coding_internal

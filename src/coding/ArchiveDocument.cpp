#include "coding/ArchiveDocument.h"

#include <limits>

#include "coding/ArchiveFormat.h"
#include "coding/BinaryPlistCheck.h"

namespace vn::coding_internal {
namespace {

// 8-byte and 16-byte integer nodes read back alike; only a comparison with a freshly made
// 8-byte node tells a 16-byte one (an unsigned value above the signed range) from a negative.
bool isWideInteger(plist_t node, std::uint64_t value) {
    if (value <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) return false;
    PlistPtr narrow(plist_new_uint(value));
    return plist_compare_node_value(node, narrow.get()) == 0;
}

Number integerOf(plist_t node) {
    std::uint64_t value = 0;
    plist_get_uint_val(node, &value);
    if (isWideInteger(node, value)) return Number::fromUnsigned(value);
    return Number::fromInteger(static_cast<std::int64_t>(value));
}

}  // namespace

std::optional<std::string> textOf(plist_t node) {
    const auto text = stringOf(node);
    if (!text) return std::nullopt;
    return std::string(*text);
}

std::optional<Value> plainValueOf(plist_t node) {
    if (!node) return std::nullopt;
    switch (plist_get_node_type(node)) {
        case PLIST_BOOLEAN: {
            std::uint8_t flag = 0;
            plist_get_bool_val(node, &flag);
            return Value(Number::fromBool(flag != 0));
        }
        case PLIST_UINT:
            return Value(integerOf(node));
        case PLIST_REAL: {
            double real = 0;
            plist_get_real_val(node, &real);
            return Value(Number::fromDouble(real));
        }
        case PLIST_STRING:
            return Value(*textOf(node));
        case PLIST_DATA: {
            std::uint64_t length = 0;
            const char* bytes = plist_get_data_ptr(node, &length);
            const auto* first = reinterpret_cast<const std::uint8_t*>(bytes);
            return Value(bytes ? Data(first, first + length) : Data{});
        }
        case PLIST_DATE: {
            std::int32_t seconds = 0;
            std::int32_t microseconds = 0;
            plist_get_date_val(node, &seconds, &microseconds);
            return Value(Date{seconds + microseconds / 1e6});
        }
        default:
            return std::nullopt;
    }
}

namespace {

std::optional<std::int64_t> integerField(plist_t entry, std::string_view key) {
    const auto value = plainValueOf(dictItem(entry, std::string(key)));
    if (!value || !value->isNumber() || value->number()->isFloatingPoint()) return std::nullopt;
    return value->number()->integerValue();
}

}  // namespace

std::optional<Decimal> decimalOf(plist_t entry) {
    const auto exponent = integerField(entry, kDecimalExponentField);
    const auto length = integerField(entry, kDecimalLengthField);
    const auto negative = plainValueOf(dictItem(entry, std::string(kDecimalNegativeField)));
    const auto mantissa = plainValueOf(dictItem(entry, std::string(kDecimalMantissaField)));
    const auto byteOrder =
        integerField(entry, kDecimalByteOrderField).value_or(kDecimalLittleEndian);
    if (!exponent || !length || !negative || !negative->isNumber() || !mantissa ||
        !mantissa->isData() || byteOrder != kDecimalLittleEndian) {
        return std::nullopt;
    }
    ArchivedDecimal archived;
    archived.exponent = *exponent;
    archived.length = *length;
    archived.negative = negative->number()->boolValue();
    archived.mantissa = *mantissa->data();
    return unarchiveDecimal(archived);
}

std::optional<ArchiveDocument> ArchiveDocument::open(const Data& bytes, std::string& reason) {
    if (auto problem = checkBinaryPropertyList(bytes.data(), bytes.size())) {
        reason = "the data is not a readable binary property list (" + *problem + ")";
        return std::nullopt;
    }
    plist_t parsed = nullptr;
    plist_from_bin(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::uint32_t>(bytes.size()), &parsed);
    ArchiveDocument document;
    document.root_.reset(parsed);
    if (!parsed) {
        reason = "the data is not a readable binary property list";
        return std::nullopt;
    }
    plist_t root = parsed;
    if (!isType(root, PLIST_DICT)) {
        reason = "the property list is not a dictionary";
        return std::nullopt;
    }
    if (stringOf(dictItem(root, std::string(kArchiverKey))) != kArchiverName) {
        reason = "\"$archiver\" is not \"NSKeyedArchiver\"";
        return std::nullopt;
    }
    if (!isType(dictItem(root, std::string(kVersionKey)), PLIST_UINT)) {
        reason = "\"$version\" is missing or not an integer";
        return std::nullopt;
    }
    document.top_ = dictItem(root, std::string(kTopKey));
    if (!isType(document.top_, PLIST_DICT)) {
        reason = "\"$top\" is missing or not a dictionary";
        return std::nullopt;
    }
    plist_t objects = dictItem(root, std::string(kObjectsKey));
    if (!isType(objects, PLIST_ARRAY)) {
        reason = "\"$objects\" is missing or not an array";
        return std::nullopt;
    }
    document.objects_ = arrayItems(objects);
    if (document.objects_.empty() || stringOf(document.objects_.front()) != kNullEntry) {
        reason = "\"$objects\" does not begin with \"$null\"";
        return std::nullopt;
    }
    return document;
}

}  // namespace vn::coding_internal

#include "coding/ArchiveFormat.h"

namespace vn::coding_internal {
namespace {

constexpr std::size_t kMantissaWords = kDecimalMantissaBytes / 2;

}  // namespace

ClassDescription arrayClass() {
    return {"NSArray", {"NSArray", "NSObject"}};
}
ClassDescription dictionaryClass() {
    return {"NSDictionary", {"NSDictionary", "NSObject"}};
}
ClassDescription dateClass() {
    return {"NSDate", {"NSDate", "NSObject"}};
}
ClassDescription nullClass() {
    return {"NSNull", {"NSNull", "NSObject"}};
}
ClassDescription decimalClass() {
    return {"NSDecimalNumber", {"NSDecimalNumber", "NSNumber", "NSValue", "NSObject"}};
}

ArchivedDecimal archiveDecimal(const Decimal& value) {
    ArchivedDecimal archived;
    archived.mantissa.assign(kDecimalMantissaBytes, 0);
    if (value.isNaN()) {
        archived.negative = true;
        return archived;
    }
    archived.exponent = value.exponent();
    archived.negative = value.isNegative() && !value.isZero();
    unsigned __int128 mantissa = value.mantissa();
    for (std::size_t word = 0; word < kMantissaWords && mantissa != 0; ++word) {
        archived.mantissa[word * 2] = static_cast<std::uint8_t>(mantissa & 0xFF);
        archived.mantissa[word * 2 + 1] = static_cast<std::uint8_t>((mantissa >> 8) & 0xFF);
        mantissa >>= 16;
        archived.length = static_cast<std::int64_t>(word) + 1;
    }
    return archived;
}

std::optional<Decimal> unarchiveDecimal(const ArchivedDecimal& archived) {
    if (archived.exponent < Decimal::kMinExponent || archived.exponent > Decimal::kMaxExponent)
        return std::nullopt;
    if (archived.length < 0 || archived.length > static_cast<std::int64_t>(kMantissaWords))
        return std::nullopt;
    const auto length = static_cast<std::size_t>(archived.length);
    const Data& bytes = archived.mantissa;
    if (bytes.size() > kDecimalMantissaBytes || bytes.size() < length * 2) return std::nullopt;
    auto byteAt = [&bytes](std::size_t index) -> unsigned {
        return index < bytes.size() ? bytes[index] : 0;
    };
    unsigned __int128 mantissa = 0;
    for (std::size_t word = kMantissaWords; word-- > 0;) {
        const unsigned low = byteAt(word * 2);
        const unsigned high = byteAt(word * 2 + 1);
        const unsigned value = low | (high << 8);
        if (word >= length && value != 0) return std::nullopt;
        mantissa = (mantissa << 16) | value;
    }
    if (length == 0) return archived.negative ? Decimal::notANumber() : Decimal{};
    return Decimal::fromParts(archived.negative, mantissa, static_cast<int>(archived.exponent));
}

}  // namespace vn::coding_internal

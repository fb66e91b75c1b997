// vn::VNNumberWithPictureFormatter: the number formatter for pictures that the platform
// pattern cannot express, those with literal text between digit positions (telephone and
// document numbers: "999-9999"). It places the number's characters into a mask itself.
//
// The mask (vnNumberFormat) is in pattern form: "0" a mandatory digit, "#" an optional digit,
// every other character literal text (quotes included: they are not interpreted).
//
// Output (stringFromNumber): the number's description and the mask are walked together from
// their right ends. "0" takes the next character of the number, or "0" when the number is
// used up; "#" takes the next character, or nothing when the number is used up, and shows the
// number "0" as a space; any other mask character is written as it is. The walk ends with
// the mask: characters of the number beyond it are dropped. So under "000-0000" 1234567 is
// "123-4567" and 123 is "000-0123"; under "###" 0 is " ".
//
// Input (numberFromString): the text and the mask are walked from their right ends. "0"
// needs a digit (else the result is absent); "#" takes a digit, and passes over anything
// else without consuming it; other mask characters must match the text exactly (else
// absent); text beyond the mask is ignored. The collected digits are the integer result.
// A text that yields no digit at all, or more digits than a signed 64-bit integer holds,
// stops the process (fatalError): such a text can only come from a caller that ignored the
// mask.
//
// Everything else (affixes, locale, ...) is inherited and does not take part in the mask's
// conversions. Thread safety as for NumberFormatter: one thread at a time.
//
// Keyed archiving stores the mask alone, under "vn.numberFormat", with the class name
// "VNFoundation.VNNumberWithPictureFormatter" (a subclass of NSNumberFormatter), so archives
// are exchanged with the mobile platform. An archive without a mask text fails to decode.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vn/coding/Coding.h"
#include "vn/formatting/NumberFormatter.h"

namespace vn {

class VNNumberWithPictureFormatter : public NumberFormatter, public Coding {
  public:
    // The designated initialiser: a formatter for the mask.
    explicit VNNumberWithPictureFormatter(std::string_view numberFormat);
    [[nodiscard]] static std::shared_ptr<VNNumberWithPictureFormatter> initWithNumberFormat(
        std::string_view numberFormat);

    // Unavailable: a picture formatter without a mask means nothing. Stops the process with
    // the platform's unimplemented-initialiser failure for
    // "VNFoundation.VNNumberWithPictureFormatter" and "init()".
    VNNumberWithPictureFormatter();

    const std::string& vnNumberFormat() const { return numberFormat_; }
    void setVnNumberFormat(std::string_view numberFormat) {
        numberFormat_ = std::string(numberFormat);
    }

    [[nodiscard]] std::string stringFromNumber(const Number& number) const override;
    // Absent when the text does not fit the mask; the result is a signed integer number.
    [[nodiscard]] std::optional<Number> numberFromString(std::string_view text) const override;
    // A number value through stringFromNumber; absent for any other kind of value.
    std::optional<std::string> stringForObjectValue(const Value& value) const override;

    std::string description() const override;

    // Archive key of the mask, and the archived class name.
    static constexpr std::string_view numberFormatCodingKey = "vn.numberFormat";
    static constexpr std::string_view codingClassName = "VNFoundation.VNNumberWithPictureFormatter";
    void encodeWithCoder(Coder& coder) const override;
    // The formatter for the archived mask; null (with the coder's error set) when the archive
    // holds no mask text.
    [[nodiscard]] static std::shared_ptr<VNNumberWithPictureFormatter> initWithCoder(Coder& coder);
    std::string classNameForCoder() const override;
    std::vector<std::string> classHierarchyForCoder() const override;

  private:
    std::string numberFormat_;
};

}  // namespace vn

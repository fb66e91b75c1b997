#include "formatting/PictureTranslation.h"

#include <algorithm>
#include <vector>

#include "formatting/Utf8Slices.h"
#include "vn/formatting/VNNumberWithPictureFormatter.h"

namespace vn::formatting_internal {
namespace {

// How the picture's ends decided the fixed affixes.
enum class Form { plain, parenthesised, plus, debitCredit };

bool isSpecial(std::string_view character) {
    static const std::vector<std::string_view> specials =
        codePointSlices(kPatternSpecialCharacters);
    return std::find(specials.begin(), specials.end(), character) != specials.end();
}

// Takes the fixed affixes off the picture's ends; returns what remains.
std::string_view takeFixedAffixes(std::string_view picture, Form& form, PictureTranslation& t) {
    if (picture.size() >= 2 && picture.front() == '(' && picture.back() == ')') {
        form = Form::parenthesised;
        t.negativePrefix = "(";
        t.negativeSuffix = ")";
        return picture.substr(1, picture.size() - 2);
    }
    if (picture.starts_with('+')) {
        form = Form::plus;
        t.positivePrefix = "+";
        return picture.substr(1);
    }
    if (picture.ends_with("DB") || picture.ends_with("CR")) {
        // Whichever word ends the picture, positive values end with CR and negative ones with
        // DB and no minus sign.
        form = Form::debitCredit;
        t.positiveSuffix = "CR";
        t.negativeSuffix = "DB";
        t.negativePrefix = "";
        return picture.substr(0, picture.size() - 2);
    }
    form = Form::plain;
    return picture;
}

void translateCharacters(std::string_view body, bool numberHasDecimals, PictureTranslation& t) {
    std::string pending;
    bool digitSeen = false;
    bool decimalsBegun = false;
    const auto flushPending = [&] {
        t.pattern += pending;
        pending.clear();
    };
    for (const std::string_view c : codePointSlices(body)) {
        if (c == "Z") {
            flushPending();
            digitSeen = true;
            t.pattern += decimalsBegun ? '0' : '#';
        } else if (c == "9") {
            flushPending();
            digitSeen = true;
            t.pattern += '0';
        } else if (c == ".") {
            if (numberHasDecimals) decimalsBegun = true;
            t.pattern += '.';
        } else if (c == "'") {
            t.pattern += "''";  // a quoted quote: one literal quote
        } else {
            std::string literal = isSpecial(c) ? "'" + std::string(c) + "'" : std::string(c);
            (digitSeen ? pending : t.leadingLiteral) += literal;
        }
    }
    t.trailingLiteral = std::move(pending);
}

void joinLiteralsWithAffixes(Form form, PictureTranslation& t) {
    const bool fixedNegative = form == Form::parenthesised || form == Form::debitCredit;
    if (!t.leadingLiteral.empty()) {
        const std::string& l = t.leadingLiteral;
        t.positivePrefix = form == Form::plus ? "+" + l : l;
        t.negativePrefix = fixedNegative ? t.negativePrefix.value_or("") + l : l + "-";
    }
    if (!t.trailingLiteral.empty()) {
        const std::string& r = t.trailingLiteral;
        t.positiveSuffix = form == Form::debitCredit ? "CR" + r : r;
        t.negativeSuffix = fixedNegative ? t.negativeSuffix.value_or("") + r : r;
    }
}

// A picture made only of suppressed positions (Z, commas, at most one period) shows zero as
// an empty text.
std::optional<std::string> zeroSymbolFor(std::string_view body) {
    std::string rest;
    for (const char c : body) {
        if (c != 'Z' && c != ',') rest += c;
    }
    if (rest.empty() || rest == ".") return std::string();
    return std::nullopt;
}

}  // namespace

bool PictureTranslation::needsMask() const {
    std::string literals;
    for (const char c : pattern) {
        if (c != '#' && c != '0' && c != '.' && c != ',') literals += c;
    }
    return !literals.empty() && !pattern.starts_with(literals);
}

PictureTranslation translateVNPicture(std::string_view picture, bool numberHasDecimals) {
    PictureTranslation t;
    Form form = Form::plain;
    const std::string_view body = takeFixedAffixes(picture, form, t);
    translateCharacters(body, numberHasDecimals, t);
    joinLiteralsWithAffixes(form, t);
    t.zeroSymbol = zeroSymbolFor(body);
    return t;
}

NumberFormatterPtr makeFormatterForPicture(const PictureTranslation& t,
                                           const std::optional<std::string>& localeId) {
    NumberFormatterPtr formatter;
    if (t.needsMask()) {
        formatter = std::make_shared<VNNumberWithPictureFormatter>(t.mask());
    } else {
        formatter = std::make_shared<NumberFormatter>();
        if (localeId) formatter->setLocale(Locale(*localeId));
        formatter->setPositiveFormat(t.pattern);
        if (t.zeroSymbol) formatter->setZeroSymbol(t.zeroSymbol);
        if (t.pattern.find('.') != std::string::npos) formatter->setGeneratesDecimalNumbers(true);
    }
    if (t.positivePrefix) formatter->setPositivePrefix(*t.positivePrefix);
    if (t.positiveSuffix) formatter->setPositiveSuffix(*t.positiveSuffix);
    if (t.negativePrefix) formatter->setNegativePrefix(*t.negativePrefix);
    if (t.negativeSuffix) formatter->setNegativeSuffix(*t.negativeSuffix);
    return formatter;
}

}  // namespace vn::formatting_internal

#include "vn/values/EnclosingQuotes.h"

namespace vn::VNUtilities {
namespace {

bool isQuoted(std::string_view text) {
    return text.size() >= 2 && (text.front() == '"' || text.front() == '\'') &&
           text.back() == text.front();
}

}  // namespace

std::string stringByRemovingEnclosingQuotes(std::string_view text, bool* hasQuotes,
                                            bool* isTranslatable) {
    const bool translatable = !text.empty() && text.front() == '!' && isQuoted(text.substr(1));
    const std::string_view literal = translatable ? text.substr(1) : text;
    const bool quoted = isQuoted(literal);
    if (hasQuotes) *hasQuotes = quoted;
    if (isTranslatable) *isTranslatable = translatable;
    if (!quoted) return std::string(text);
    return std::string(literal.substr(1, literal.size() - 2));
}

}  // namespace vn::VNUtilities

#include "vn/network/VNHTTPWarningHeader.h"

#include <functional>
#include <optional>
#include <utility>

#include "network/PercentDecoding.h"

namespace vn {
namespace {

constexpr std::string_view kEncodedPrefix = "Encoded:";
constexpr std::string_view kUserPrefix = "User:";
constexpr std::string_view kSystemPrefix = "System:";

std::string_view withoutEncodedPrefix(std::string_view text) {
    if (text.starts_with(kEncodedPrefix)) text.remove_prefix(kEncodedPrefix.size());
    return text;
}

}  // namespace

VNHTTPWarningHeader::VNHTTPWarningHeader(std::int64_t code, std::string agent, std::string text)
    : code_(code), agent_(std::move(agent)), text_(std::move(text)) {}

std::shared_ptr<VNHTTPWarningHeader> VNHTTPWarningHeader::initWithCode(std::int64_t code,
                                                                       std::string_view agent,
                                                                       std::string_view text) {
    return std::make_shared<VNHTTPWarningHeader>(code, std::string(agent), std::string(text));
}

bool VNHTTPWarningHeader::isUserWarning() const {
    return withoutEncodedPrefix(text_).starts_with(kUserPrefix);
}

bool VNHTTPWarningHeader::isSystemWarning() const {
    return withoutEncodedPrefix(text_).starts_with(kSystemPrefix);
}

bool VNHTTPWarningHeader::isWarningEncoded() const {
    return std::string_view(text_).starts_with(kEncodedPrefix);
}

std::string VNHTTPWarningHeader::warningText() const {
    std::string_view message = withoutEncodedPrefix(text_);
    if (message.starts_with(kUserPrefix)) {
        message.remove_prefix(kUserPrefix.size());
    } else if (message.starts_with(kSystemPrefix)) {
        message.remove_prefix(kSystemPrefix.size());
    }
    if (!isWarningEncoded()) return std::string(message);
    std::optional<std::string> decoded = network_internal::removingPercentEncoding(message);
    return decoded ? std::move(*decoded) : std::string(message);
}

std::string VNHTTPWarningHeader::description() const {
    std::string header = std::to_string(code_) + ' ' + agent_ + " \"";
    for (const char c : text_) {
        if (c == '"' || c == '\\') header += '\\';
        header += c;
    }
    header += '"';
    return header;
}

bool VNHTTPWarningHeader::isEqual(const Object& other) const {
    const auto* warning = dynamic_cast<const VNHTTPWarningHeader*>(&other);
    return warning && warning->code_ == code_ && warning->agent_ == agent_ &&
           warning->text_ == text_;
}

std::size_t VNHTTPWarningHeader::hash() const {
    return std::hash<std::string>{}(text_) ^ std::hash<std::int64_t>{}(code_);
}

}  // namespace vn

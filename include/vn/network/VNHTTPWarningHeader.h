// VNHTTPWarningHeader: one warning of an HTTP "Warning" response header (RFC 7234: a code, the
// agent that added it and a quoted text), and the classification of the texts the platform's
// servers send in it.
//
// A text meant for the end user starts with "User:", one meant for the developer or the log
// with "System:"; either may be preceded by "Encoded:" when the message after the prefixes is
// percent-encoded ("Encoded:User:Disk%20full"). Prefixes compare case-sensitively. Parsing a
// whole header value is VNUtilities::httpWarningsFromHeader() (vn/network/VNUtilitiesHTTP.h).
//
// A warning is immutable and may be read from any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "vn/platform/Object.h"

namespace vn {

class VNHTTPWarningHeader final : public Object {
  public:
    // A warning needs its code, agent and text: there is no empty one.
    VNHTTPWarningHeader() = delete;
    VNHTTPWarningHeader(std::int64_t code, std::string agent, std::string text);
    static std::shared_ptr<VNHTTPWarningHeader> initWithCode(std::int64_t code,
                                                             std::string_view agent,
                                                             std::string_view text);

    // The warning code (three digits in a well-formed header, 199 or 299 for these texts).
    std::int64_t code() const { return code_; }
    // The host (with an optional port) or pseudonym of the agent that added the warning.
    const std::string& agent() const { return agent_; }
    // The text as received, prefixes included, quotes and escapes of the header removed.
    const std::string& text() const { return text_; }

    // Whether text() starts with "User:" or "Encoded:User:".
    bool isUserWarning() const;
    // Whether text() starts with "System:" or "Encoded:System:".
    bool isSystemWarning() const;
    // Whether text() starts with "Encoded:".
    bool isWarningEncoded() const;
    // The message: text() without "Encoded:" and then without "User:" or "System:"; when it
    // was marked "Encoded:", percent-decoded ("+" stays "+"). A message that cannot be decoded
    // (a "%" not followed by two hexadecimal digits, bytes that are not UTF-8) is returned
    // undecoded. A text without prefixes is returned as it is.
    std::string warningText() const;

    // The warning in header form: 199 agent "text", with '"' and '\' in the text escaped by a
    // backslash, so that httpWarningsFromHeader() reads it back as an equal warning.
    std::string description() const override;
    // Equal code, agent and text.
    bool isEqual(const Object& other) const override;
    std::size_t hash() const override;

  private:
    std::int64_t code_;
    std::string agent_;
    std::string text_;
};

}  // namespace vn

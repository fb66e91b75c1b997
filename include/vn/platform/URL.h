// vn::URL: a URL or relative reference, checked against the generic syntax of RFC 3986 and
// split into its components.
//
// A URL keeps its text exactly as it was given: no normalisation, no percent-decoding, no
// resolution against a base. absoluteString() gives the text back byte for byte, components are
// reported as they are written (percent-escapes included), and two URLs are equal when their
// texts are. A URL is an immutable value; copies may be read from any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vn {

class URL {
  public:
    // The URL for text that is a URI reference: an absolute URI ("https://example.com/a?b#c",
    // "mailto:someone@example.com") or a relative reference ("../a", "//host/p", "?q").
    // Absent for:
    // - the empty text;
    // - a space, a control character or any other character outside the RFC's set (letters,
    //   digits, "-._~:/?#[]@!$&'()*+,;=" and "%"); non-ASCII text must be percent-encoded;
    // - a "%" that is not followed by two hexadecimal digits;
    // - a scheme (the text before the first ":" that precedes every "/", "?" and "#") that does
    //   not match ALPHA *( ALPHA / DIGIT / "+" / "-" / "." ), such as ":x" or "1a:b";
    // - the rest of the grammar broken: a second "#", "[" or "]" outside an IP-literal host, a
    //   port that is not digits, a bracketed host that is neither an IPv6 address nor an
    //   IPvFuture literal, a user-information part containing "@".
    [[nodiscard]] static std::optional<URL> URLWithString(std::string_view text);

    // The text exactly as it was given.
    const std::string& absoluteString() const { return text_; }
    // The scheme as written ("https", "HTTP"); absent for a relative reference.
    const std::optional<std::string>& scheme() const { return scheme_; }
    // The host of the authority as written ("Example.com", "127.0.0.1"), an IP literal without
    // its brackets ("::1"); absent when there is no authority or its host is empty
    // ("file:///tmp/a").
    const std::optional<std::string>& host() const { return host_; }
    // The port's digits as written ("8080"); absent when the authority names no port or an
    // empty one ("http://h:/"). The value is not range-checked: the syntax allows any digits.
    const std::optional<std::string>& port() const { return port_; }
    // The path as written: "" when there is none, "/a/b%20c" for "http://h/a/b%20c?q".
    const std::string& path() const { return path_; }
    // What follows the first "?" up to the fragment; absent without "?", "" for "http://h/?".
    const std::optional<std::string>& query() const { return query_; }
    // What follows "#"; absent without "#".
    const std::optional<std::string>& fragment() const { return fragment_; }

    bool operator==(const URL& other) const { return text_ == other.text_; }

  private:
    URL() = default;

    std::string text_;
    std::optional<std::string> scheme_;
    std::optional<std::string> host_;
    std::optional<std::string> port_;
    std::string path_;
    std::optional<std::string> query_;
    std::optional<std::string> fragment_;
};

}  // namespace vn

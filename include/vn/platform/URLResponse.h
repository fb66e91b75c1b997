// vn::URLResponse and vn::HTTPURLResponse: what a server answered, without the body: the
// URL, the body's MIME type, expected length and text encoding, and for HTTP the status code
// and the header fields.
//
// Responses are immutable objects held by std::shared_ptr; they may be read from any thread.
// The accessors are virtual so that a subclass can answer for a response it keeps elsewhere.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "vn/platform/Object.h"
#include "vn/platform/StringEncoding.h"
#include "vn/platform/URL.h"

namespace vn {

class URLResponse : public Object {
  public:
    // expectedContentLength -1 means "unknown".
    URLResponse(std::optional<URL> url, std::optional<std::string> mimeType,
                std::int64_t expectedContentLength, std::optional<std::string> textEncodingName);

    virtual const std::optional<URL>& url() const { return url_; }
    // The body's media type ("text/html"); absent when unknown.
    virtual const std::optional<std::string>& mimeType() const { return mimeType_; }
    // The body's length in bytes as announced, or -1 when it was not.
    virtual std::int64_t expectedContentLength() const { return expectedContentLength_; }
    // The charset the body's text is in, as the server named it ("iso-8859-1"); absent when
    // none was named.
    virtual const std::optional<std::string>& textEncodingName() const { return textEncodingName_; }

    // The encoding textEncodingName() names (VNUtilities::stringEncoding); absent when there is
    // no name or it names no known encoding.
    std::optional<StringEncoding> vnStringEncoding() const;

  private:
    std::optional<URL> url_;
    std::optional<std::string> mimeType_;
    std::int64_t expectedContentLength_;
    std::optional<std::string> textEncodingName_;
};

class HTTPURLResponse : public URLResponse {
  public:
    using HeaderFields = std::map<std::string, std::string>;

    // The MIME type, the text encoding and the expected length come from the header fields:
    // "Content-Type: text/html; charset=ISO-8859-1" gives "text/html" (lowercased) and
    // "ISO-8859-1" (quotes removed, case kept); a "Content-Length" of digits gives its value,
    // anything else -1.
    HTTPURLResponse(URL url, std::int64_t statusCode, HeaderFields headerFields);

    virtual std::int64_t statusCode() const { return statusCode_; }
    // The header fields as received, by the names the server gave them.
    virtual const HeaderFields& allHeaderFields() const { return headerFields_; }
    // The value of the field named so, compared without regard to ASCII case; absent when
    // there is no such field.
    std::optional<std::string> valueForHTTPHeaderField(std::string_view name) const;

  private:
    std::int64_t statusCode_;
    HeaderFields headerFields_;
};

using URLResponsePtr = std::shared_ptr<const URLResponse>;
using HTTPURLResponsePtr = std::shared_ptr<const HTTPURLResponse>;

}  // namespace vn

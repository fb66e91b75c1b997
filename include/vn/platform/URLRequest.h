// vn::URLRequest: what to ask a server: the URL, the HTTP method, the header fields and the
// body. A plain value: copies are independent, and a request may be read from several threads
// at once as long as nobody modifies it.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "vn/platform/URL.h"
#include "vn/platform/Value.h"

namespace vn {

class URLRequest {
  public:
    // A request without a URL (nothing can be sent until one is set).
    URLRequest() = default;
    explicit URLRequest(URL url) : url_(std::move(url)) {}

    const std::optional<URL>& url() const { return url_; }
    void setURL(std::optional<URL> url) { url_ = std::move(url); }

    // "GET" until set; may be set to absent (a request without a method).
    const std::optional<std::string>& httpMethod() const { return httpMethod_; }
    void setHTTPMethod(std::optional<std::string> method) { httpMethod_ = std::move(method); }

    // Sets a header field. Names compare without regard to ASCII case: setting "accept" after
    // "Accept" replaces the field, which then carries the name as last given. An absent value
    // removes the field (removing a field that is not there changes nothing).
    void setValue(std::optional<std::string> value, std::string_view forHTTPHeaderField);
    // The value of the field named so, compared without regard to ASCII case; absent when
    // there is no such field.
    std::optional<std::string> valueForHTTPHeaderField(std::string_view name) const;
    // Every field, by the names they were given; absent until a field has been set (a request
    // whose fields were all removed again answers an empty map).
    std::optional<std::map<std::string, std::string>> allHTTPHeaderFields() const;
    // Replaces every field by the given ones (absent: back to "never set"). Names of the map
    // that differ only in case collapse into one field, the last in the map's order winning.
    void setAllHTTPHeaderFields(const std::optional<std::map<std::string, std::string>>& fields);

    // The bytes sent as the body; absent when the request has none.
    const std::optional<Data>& httpBody() const { return httpBody_; }
    void setHTTPBody(std::optional<Data> body) { httpBody_ = std::move(body); }

    bool operator==(const URLRequest& other) const = default;

  private:
    using HeaderFields = std::vector<std::pair<std::string, std::string>>;

    std::optional<URL> url_;
    std::optional<std::string> httpMethod_ = "GET";
    std::optional<HeaderFields> headerFields_;  // in the order they were first set
    std::optional<Data> httpBody_;
};

}  // namespace vn

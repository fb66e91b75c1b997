#include "vn/errors/HTTPStatusCodeText.h"

#include <algorithm>
#include <array>
#include <utility>

namespace vn {
namespace {

constexpr std::array<std::pair<std::int64_t, std::string_view>, 63> kStatusTexts{{
    {100, "continue"},
    {101, "switching protocols"},
    {102, "processing"},
    {103, "early hints"},
    {200, "no error"},
    {201, "created"},
    {202, "accepted"},
    {203, "non-authoritative information"},
    {204, "no content"},
    {205, "reset content"},
    {206, "partial content"},
    {207, "multi-status"},
    {208, "already reported"},
    {226, "im used"},
    {300, "multiple choices"},
    {301, "moved permanently"},
    {302, "found"},
    {303, "see other"},
    {304, "not modified"},
    {305, "needs proxy"},
    {306, "switch proxy"},
    {307, "temporarily redirected"},
    {308, "permanent redirect"},
    {400, "bad request"},
    {401, "unauthorized"},
    {402, "payment required"},
    {403, "forbidden"},
    {404, "not found"},
    {405, "method not allowed"},
    {406, "unacceptable"},
    {407, "proxy authentication required"},
    {408, "request timed out"},
    {409, "conflict"},
    {410, "no longer exists"},
    {411, "length required"},
    {412, "precondition failed"},
    {413, "request too large"},
    {414, "requested URL too long"},
    {415, "unsupported media type"},
    {416, "requested range not satisfiable"},
    {417, "expectation failed"},
    {418, "i'm a teapot"},
    {421, "misdirected request"},
    {422, "unprocessable entity"},
    {423, "locked"},
    {424, "failed dependency"},
    {425, "too early"},
    {426, "upgrade required"},
    {428, "precondition required"},
    {429, "too many requests"},
    {431, "request header fields too large"},
    {451, "unavailable for legal reasons"},
    {500, "internal server error"},
    {501, "unimplemented"},
    {502, "bad gateway"},
    {503, "service unavailable"},
    {504, "gateway timed out"},
    {505, "unsupported version"},
    {506, "variant also negotiates"},
    {507, "insufficient storage"},
    {508, "loop detected"},
    {510, "not extended"},
    {511, "network authentication required"},
}};

static_assert(std::is_sorted(kStatusTexts.begin(), kStatusTexts.end()));

std::string_view classText(std::int64_t statusCode) {
    if (statusCode >= 100 && statusCode < 200) return "informational";
    if (statusCode >= 200 && statusCode < 300) return "success";
    if (statusCode >= 300 && statusCode < 400) return "redirected";
    if (statusCode >= 400 && statusCode < 500) return "client error";
    return "server error";
}

}  // namespace

std::string_view localizedStringForStatusCode(std::int64_t statusCode) {
    const auto found =
        std::lower_bound(kStatusTexts.begin(), kStatusTexts.end(), statusCode,
                         [](const auto& entry, std::int64_t code) { return entry.first < code; });
    if (found != kStatusTexts.end() && found->first == statusCode) return found->second;
    return classText(statusCode);
}

}  // namespace vn

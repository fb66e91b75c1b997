#include "vn/values/GeoLocationText.h"

#include <charconv>

#include "vn/platform/Scanner.h"

namespace vn::VNUtilities {
namespace {

void appendFixed7(std::string& out, double value) {
    char buffer[400];  // enough for any double with seven decimals
    const auto result =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, 7);
    out.append(buffer, result.ptr);
}

}  // namespace

LocationCoordinate2D coordinateFromGeoLocationString(std::optional<std::string_view> text) {
    if (!text || text->empty()) return kCLLocationCoordinate2DInvalid;
    static const Scanner::CharacterSet separators(",;");
    Scanner scanner(*text);
    double latitude = 0;
    double longitude = 0;
    if (!scanner.scanDouble(&latitude) || !scanner.scanCharactersFromSet(separators, nullptr) ||
        !scanner.scanDouble(&longitude)) {
        return kCLLocationCoordinate2DInvalid;
    }
    const LocationCoordinate2D coordinate = CLLocationCoordinate2DMake(latitude, longitude);
    return CLLocationCoordinate2DIsValid(coordinate) ? coordinate : kCLLocationCoordinate2DInvalid;
}

std::string geoLocationStringFromCoordinate(const LocationCoordinate2D& coordinate) {
    if (!CLLocationCoordinate2DIsValid(coordinate)) return {};
    std::string text;
    appendFixed7(text, coordinate.latitude);
    text += ',';
    appendFixed7(text, coordinate.longitude);
    return text;
}

}  // namespace vn::VNUtilities

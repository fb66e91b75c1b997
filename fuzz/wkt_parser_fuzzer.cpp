// libFuzzer target: any bytes given to the WKT parser give a geometry or a parser error,
// and a geometry can always be written back as text.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "vn/wkt/WKTParser.h"
#include "vn/wkt/WKTString.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    vn::ErrorPtr error;
    const vn::WKTGeometryPtr geometry = vn::WKTParser::parseGeometry(text, &error);
    if ((geometry == nullptr) == (error == nullptr)) std::abort();
    if (geometry) (void)geometry->toWKT();
    if (error && error->domain() != vn::WKTParserErrorDomain) std::abort();
    (void)vn::WKTString::splitParentCommasNSString(text);
    (void)vn::WKTString::splitDoubleParentCommasNSString(text);
    return 0;
}

// vn coerce: value coercion on a value given on the command line; and the tour's section on
// loosely typed values (coercion, geolocation text, model literals, JSON).
#include <cstdio>
#include <string>

#include "../Registry.h"
#include "vn/platform/Scanner.h"
#include "vn/values/EnclosingQuotes.h"
#include "vn/values/GeoLocationText.h"
#include "vn/values/JSON.h"
#include "vn/values/ValueCoercion.h"

namespace {

using namespace vn;

const char* numberKindName(const Number& number) {
    switch (number.kind()) {
        case Number::Kind::boolean:
            return "boolean";
        case Number::Kind::signedInteger:
            return "signed integer";
        case Number::Kind::unsignedInteger:
            return "unsigned integer";
        case Number::Kind::floatingPoint:
            return "float";
        case Number::Kind::doublePrecision:
            return "double";
        case Number::Kind::decimal:
            return "decimal";
    }
    return "number";
}

std::string valueKindName(const Value& value) {
    if (const Number* number = value.number()) return numberKindName(*number);
    static const char* const kNames[] = {"nil",  "null",  "string",     "string", "data",
                                         "date", "array", "dictionary", "object"};
    return kNames[static_cast<int>(value.kind())];
}

// The command-line text as JSON when it is JSON, otherwise as a text.
Value commandLineValue(const std::string& text) {
    Value decoded = VNUtilities::jsonObject(text);
    return decoded.isNil() ? Value(text) : decoded;
}

void printNumber(const std::optional<Number>& number) {
    if (!number) {
        std::printf("result: nil\n");
        return;
    }
    std::printf("result: %s (%s)\n", number->description().c_str(), numberKindName(*number));
}

int runCoerce(const tool::Arguments& arguments);

const tool::Command kCoerce{"coerce", "coerce bool|int|uint|double|decimal|string|geo VALUE",
                            "convert a value (JSON when it parses, else text) as the library does",
                            "vn coerce int '\"42 items\"'", runCoerce};

bool isCoercionTarget(const std::string& target) {
    for (const char* known : {"bool", "int", "uint", "double", "decimal", "string", "geo"}) {
        if (target == known) return true;
    }
    return false;
}

int runCoerce(const tool::Arguments& arguments) {
    if (arguments.size() != 2 || !isCoercionTarget(arguments[0])) return tool::usageError(kCoerce);
    const std::string& target = arguments[0];
    const Value value = commandLineValue(arguments[1]);
    const std::string input = jsonString(value);
    std::printf("input:  %s (%s)\n", input.c_str(), valueKindName(value).c_str());
    if (target == "bool") {
        std::printf("result: %s (boolean)\n", VNUtilities::boolFromValue(value) ? "true" : "false");
    } else if (target == "int") {
        printNumber(VNUtilities::integerNumberFromValue(value));
    } else if (target == "uint") {
        printNumber(VNUtilities::unsignedIntegerNumberFromValue(value));
    } else if (target == "double") {
        printNumber(VNUtilities::doubleNumberFromValue(value));
    } else if (target == "decimal") {
        printNumber(VNUtilities::decimalNumberFromValue(value));
    } else if (target == "string") {
        const std::optional<std::string> text = VNUtilities::stringFromObject(value);
        std::printf(text ? "result: %s (string)\n" : "result: nil\n", text ? text->c_str() : "");
    } else {  // geo
        const LocationCoordinate2D coordinate = VNUtilities::coordinateFromGeoLocationString(value);
        if (!CLLocationCoordinate2DIsValid(coordinate)) {
            std::printf("result: invalid coordinate (-180, -180)\n");
        } else {
            std::printf("result: latitude %s, longitude %s (coordinate; written back \"%s\")\n",
                        shortestDoubleText(coordinate.latitude).c_str(),
                        shortestDoubleText(coordinate.longitude).c_str(),
                        VNUtilities::geoLocationStringFromCoordinate(coordinate).c_str());
        }
    }
    return tool::kSuccess;
}

void showValues() {
    const std::string payload =
        R"({"visible": "YES", "count": "42 items", "ratio": "1.5", "hidden": null, "tags": "news",)"
        R"( "location": "-34.9, -56.16", "big": 18446744073709551615})";
    const Value document = VNUtilities::jsonObject(payload, Value::Kind::dictionary);
    std::printf("decoded server answer:\n%s",
                jsonString(document, JSONWritingStyle::pretty).c_str());

    std::printf("boolFromValue(visible)              = %s\n",
                VNUtilities::boolFromValue(document["visible"]) ? "true" : "false");
    std::printf("boolFromValue(hidden, default true) = %s (the null marker takes the default)\n",
                VNUtilities::boolFromValue(document["hidden"], true) ? "true" : "false");
    std::printf("integerFromValue(count, 0)          = %lld\n",
                static_cast<long long>(VNUtilities::integerFromValue(document["count"], 0)));
    std::printf("doubleNumberFromValue(ratio)        = %s\n",
                VNUtilities::doubleNumberFromValue(document["ratio"])->description().c_str());
    std::printf(
        "unsignedIntegerFromValue(big, 0)    = %llu\n",
        static_cast<unsigned long long>(VNUtilities::unsignedIntegerFromValue(document["big"], 0)));
    std::printf("stringFromObject(hidden)            = %s\n",
                VNUtilities::stringFromObject(document["hidden"]).value_or("nil").c_str());
    std::printf("arrayFromObject(tags)               = %s\n",
                jsonString(VNUtilities::arrayFromObject(document["tags"])).c_str());
    const LocationCoordinate2D where =
        VNUtilities::coordinateFromGeoLocationString(document["location"]);
    std::printf("coordinate(location)                = (%s, %s), written back \"%s\"\n",
                shortestDoubleText(where.latitude).c_str(),
                shortestDoubleText(where.longitude).c_str(),
                VNUtilities::geoLocationStringFromCoordinate(where).c_str());

    bool hasQuotes = false;
    bool isTranslatable = false;
    const std::string literal =
        VNUtilities::stringByRemovingEnclosingQuotes("!\"Welcome\"", &hasQuotes, &isTranslatable);
    std::printf("model literal !\"Welcome\"            = %s (quotes %s, translatable %s)\n",
                literal.c_str(), hasQuotes ? "yes" : "no", isTranslatable ? "yes" : "no");

    Scanner scanner("  12.5kg; 7");
    const double weight = scanner.scanDouble().value_or(0);
    std::printf("scanner on \"  12.5kg; 7\"            = %s, then stops at \"%s\"\n",
                shortestDoubleText(weight).c_str(),
                std::string(scanner.string().substr(scanner.scanLocation())).c_str());
    std::printf("JSON of 0.1 and 1e20                = %s\n",
                jsonString(Value(Value::Array{0.1, 1e20})).c_str());
}

const tool::CommandRegistration kCoerceRegistration{kCoerce};
const tool::TourRegistration kValuesTour{{10, "Values: loosely typed input", showValues}};

}  // namespace

// A generated table of values that loosely typed input can hold and that break careless code:
// every kind, extreme and non-finite numbers, empty, huge and malformed texts, deep nesting.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "testing/ValuePrinting.h"
#include "vn/platform/Error.h"
#include "vn/platform/Value.h"

namespace vn::testing {

inline Value nested(Value innermost, int depth, bool dictionaries) {
    Value value = std::move(innermost);
    for (int i = 0; i < depth; ++i) {
        value = dictionaries ? Value(Value::Dictionary{{"k", value}}) : Value(Value::Array{value});
    }
    return value;
}

inline std::vector<Value> hostileScalars() {
    using Limits64 = std::numeric_limits<std::int64_t>;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    std::vector<Value> values = {
        Value(),
        Value::null(),
        // numbers of every kind and size
        Value(true),
        Value(false),
        Value(0),
        Value(-1),
        Value(Limits64::min()),
        Value(Limits64::max()),
        Value(std::numeric_limits<std::uint64_t>::max()),
        Value(0.0),
        Value(-0.0),
        Value(nan),
        Value(-nan),
        Value(inf),
        Value(-inf),
        Value(std::numeric_limits<double>::max()),
        Value(5e-324),
        Value(-1e300),
        Value(std::numeric_limits<float>::quiet_NaN()),
        Value(std::numeric_limits<float>::infinity()),
        Value(0.1f),
        Value(Decimal::notANumber()),
        Value(Decimal::fromParts(false, 1, 127)),
        Value(Decimal::fromParts(true, 12345678901234567890ULL, -128)),
        // texts
        Value(""),
        Value(" "),
        Value("\t\n\r"),
        Value("0"),
        Value("-0"),
        Value("1"),
        Value("-1"),
        Value("abc"),
        Value("\xFF\xFE"),
        Value("\xC3"),
        Value("\xED\xA0\x80"),
        Value(std::string("1\0"
                          "2",
                          3)),
        Value(std::string(1000, '9')),
        Value("-" + std::string(1000, '9')),
        Value("0." + std::string(800, '0') + "1"),
        Value("1e999999999"),
        Value("-1e-999999999"),
        Value("nan"),
        Value("inf"),
        Value("0x1p3"),
        Value("\xEF\xBC\x91\xEF\xBC\x92"),
        Value("\xD9\xA3"),
        Value("1,5"),
        Value("1.5"),
        Value(",;"),
        Value("."),
        Value("-34.9,-56.16"),
        Value("999,999"),
        Value("true"),
        Value("YES"),
        Value("\"quoted\""),
        Value("!'x'"),
        Value("'"),
        Value("{"),
        Value("[1,2"),
        Value("numeric(10,2)"),
        Value("typ/"),
        Value("vn_usrdeftyp"),
        Value("("),
        Value(")"),
        Value("()"),
        Value("(,)"),
        Value("x(1,2"),
        Value("Center"),
        Value("9fb193d9-64a4-4d30-b129-ff7c76830f7e-"),
        Value("9FB193D9-64A4-4D30-B129-FF7C76830F7E-Name"),
        Value(std::string(100000, 'a')),
        // data, dates, objects
        Value(Data{}),
        Value(Data{0x00, 0xFF, 0x80}),
        Value(Date{0}),
        Value(Date{nan}),
        Value(Date{inf}),
        Value(Date{-1e20}),
        Value(std::make_shared<Object>()),
        Value(Error::make("d", 1)),
    };
    return values;
}

inline std::vector<Value> hostileValues() {
    std::vector<Value> values = hostileScalars();
    const std::vector<Value> scalars = values;
    values.push_back(Value(Value::Array{}));
    values.push_back(Value(Value::Dictionary{}));
    values.push_back(Value(Value::Array(scalars)));
    Value::Dictionary byIndex;
    for (std::size_t i = 0; i < scalars.size(); ++i) byIndex["k" + std::to_string(i)] = scalars[i];
    values.push_back(Value(byIndex));
    values.push_back(Value(Value::Dictionary{{"", Value()}, {"\xFF", Value(1)}}));
    values.push_back(Value(Value::Array{Value(), Value::null(), Value(Value::Array{Value()})}));
    values.push_back(nested(Value("deep"), 200, false));
    values.push_back(nested(Value(1.5), 200, true));
    return values;
}

// The kind and the start of the description, for failure messages.
inline std::string describeBriefly(const Value& value) {
    static constexpr const char* kKinds[] = {"nil",  "null",  "number",     "string", "data",
                                             "date", "array", "dictionary", "object"};
    std::string description = value.isArray() || value.isDictionary() ? "" : value.description();
    if (description.size() > 40) description = description.substr(0, 40) + "...";
    return std::string(kKinds[static_cast<int>(value.kind())]) + " " + description;
}

}  // namespace vn::testing

// Value coercion on its hot paths: booleans from short texts, and doubles from numeric texts
// measured beside std::from_chars on the very same texts.
#include <benchmark/benchmark.h>

#include <array>
#include <charconv>
#include <string>

#include "vn/values/JSON.h"
#include "vn/values/ValueCoercion.h"

namespace {

using namespace vn;

constexpr std::array<const char*, 8> kDecimalTexts{
    "3.14159", "-12.5e3", "0.000123", "42.0", "-0.5", "1234567.891", "6.02214076e23", "100.25"};
constexpr std::array<const char*, 8> kIntegerTexts{"42", "-17",      "123456", "7e3",
                                                   "0",  "99999999", "-5e-3",  "31"};
// Full-precision and far-exponent texts: more digits or a larger power of ten than a double
// holds exactly, so none can be computed by one multiplication or division.
constexpr std::array<const char*, 8> kLongTexts{
    "3.141592653589793",      "2.718281828459045e-5",   "0.30000000000000004",
    "1.7976931348623157e308", "-9.87654321098765e-100", "6.62607015e-34",
    "12345678901234567",      "4.9406564584124654e-324"};

template <std::size_t N>
std::array<Value, N> valuesOf(const std::array<const char*, N>& texts) {
    std::array<Value, N> values;
    for (std::size_t i = 0; i < N; ++i) values[i] = Value(texts[i]);
    return values;
}

template <std::size_t N>
std::array<std::string, N> stringsOf(const std::array<const char*, N>& texts) {
    std::array<std::string, N> strings;
    for (std::size_t i = 0; i < N; ++i) strings[i] = texts[i];
    return strings;
}

void BM_BoolFromValueShortText(benchmark::State& state) {
    const std::array<Value, 4> values{Value("YES"), Value("no"), Value("true"), Value("0")};
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(VNUtilities::boolFromValue(values[i], false));
        i = (i + 1) & 3;
    }
}
BENCHMARK(BM_BoolFromValueShortText);

template <const std::array<const char*, 8>& Texts>
void BM_DoubleNumberFromValue(benchmark::State& state) {
    const auto values = valuesOf(Texts);
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(VNUtilities::doubleNumberFromValue(values[i]));
        i = (i + 1) & 7;
    }
}

template <const std::array<const char*, 8>& Texts>
void BM_FromChars(benchmark::State& state) {
    const auto strings = stringsOf(Texts);
    std::size_t i = 0;
    for (auto _ : state) {
        double value = 0;
        const std::string& text = strings[i];
        benchmark::DoNotOptimize(std::from_chars(text.data(), text.data() + text.size(), value));
        benchmark::DoNotOptimize(value);
        i = (i + 1) & 7;
    }
}

BENCHMARK(BM_DoubleNumberFromValue<kDecimalTexts>)->Name("BM_DoubleNumberFromValue/point_texts");
BENCHMARK(BM_FromChars<kDecimalTexts>)->Name("BM_FromChars/point_texts");
BENCHMARK(BM_DoubleNumberFromValue<kIntegerTexts>)
    ->Name("BM_DoubleNumberFromValue/pointless_texts");
BENCHMARK(BM_FromChars<kIntegerTexts>)->Name("BM_FromChars/pointless_texts");
BENCHMARK(BM_DoubleNumberFromValue<kLongTexts>)->Name("BM_DoubleNumberFromValue/long_texts");
BENCHMARK(BM_FromChars<kLongTexts>)->Name("BM_FromChars/long_texts");

void BM_JSONRoundTrip(benchmark::State& state) {
    const std::string text =
        R"({"id": 12345, "name": "Customer", "ratio": 0.125, "tags": ["a", "b", "c"], "active": true,)"
        R"( "address": {"street": "Main", "number": 42, "location": "-34.9,-56.16"}, "note": null})";
    for (auto _ : state) {
        const Value value = VNUtilities::jsonObject(text);
        benchmark::DoNotOptimize(jsonString(value));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}
BENCHMARK(BM_JSONRoundTrip);

}  // namespace

BENCHMARK_MAIN();

// How the number and date parsers scale with the length of what they are given: model pictures
// and number patterns (each request a cache miss, so the picture is translated and compiled),
// number texts, date patterns and date texts, from 1 KiB to 1 MiB. Inputs beyond the documented
// maximum lengths are refused early, so the fitted complexity is at most linear.
#include <benchmark/benchmark.h>

#include <optional>
#include <string>

#include "testing/InputLengthScaling.h"
#include "vn/formatting/DateFormatter.h"
#include "vn/formatting/NumberFormatter.h"
#include "vn/platform/Thread.h"

namespace {

using vn::testing::inputLength;
using vn::testing::overInputLengths;
using vn::testing::recordInputLength;
using vn::testing::repeated;

const std::optional<std::string> kLocale = std::string("en_US");

// A picture of nines: translated, compiled by ICU, used to format and to read a digit run.
void BM_PictureOfNines(benchmark::State& state) {
    const std::string picture = repeated("9", inputLength(state));
    const std::string key = "VNNSNumberFormatterWithVNPicture" + picture + "LocaleId" + *kLocale;
    for (auto _ : state) {
        vn::Thread::threadDictionary().erase(key);
        auto formatter = vn::NumberFormatter::numberFormatterForVNPicture(picture, kLocale, true);
        benchmark::DoNotOptimize(formatter->stringFromNumber(vn::Number(std::int64_t{12345})));
        benchmark::DoNotOptimize(formatter->numberFromString(picture));
    }
    recordInputLength(state);
}
BENCHMARK(BM_PictureOfNines)->Apply(overInputLengths)->Complexity(benchmark::oN);

// A picture with literal text between positions, which makes a mask formatter.
void BM_MaskPicture(benchmark::State& state) {
    const std::string picture = repeated("999-", inputLength(state));
    const std::string key = "VNNSNumberFormatterWithVNPicture" + picture + "LocaleId" + *kLocale;
    for (auto _ : state) {
        vn::Thread::threadDictionary().erase(key);
        auto formatter = vn::NumberFormatter::numberFormatterForVNPicture(picture, kLocale, true);
        benchmark::DoNotOptimize(formatter->stringFromNumber(vn::Number(std::int64_t{12345})));
    }
    recordInputLength(state);
}
BENCHMARK(BM_MaskPicture)->Apply(overInputLengths)->Complexity(benchmark::oN);

// A number pattern of nines (an ICU rounding increment) and a fraction of nines.
void BM_NumberPatternOfNines(benchmark::State& state) {
    const std::string pattern = "0." + repeated("9", inputLength(state));
    const std::string key = "VNNSNumberFormatterWithFormat" + pattern + "LocaleId" + *kLocale;
    for (auto _ : state) {
        vn::Thread::threadDictionary().erase(key);
        auto formatter = vn::NumberFormatter::numberFormatterForNumberFormat(pattern, kLocale);
        benchmark::DoNotOptimize(formatter->stringFromNumber(vn::Number(1.5)));
    }
    recordInputLength(state);
}
BENCHMARK(BM_NumberPatternOfNines)->Apply(overInputLengths)->Complexity(benchmark::oN);

// Reading a long digit run with an ordinary pattern.
void BM_NumberTextOfNines(benchmark::State& state) {
    const std::string text = repeated("9", inputLength(state));
    const auto formatter = vn::NumberFormatter::numberFormatterForNumberFormat("#,##0.00", kLocale);
    for (auto _ : state) benchmark::DoNotOptimize(formatter->numberFromString(text));
    recordInputLength(state);
}
BENCHMARK(BM_NumberTextOfNines)->Apply(overInputLengths)->Complexity(benchmark::oN);

// A date pattern of adjacent numeric fields, formatting an instant and reading it back.
void BM_DatePatternOfAdjacentFields(benchmark::State& state) {
    const std::string pattern = repeated("HHmm", inputLength(state));
    const std::string key = "VNNSDateFormatterWithFormat" + pattern;
    const vn::Date instant = vn::Date::fromTimeIntervalSince1970(3600);
    for (auto _ : state) {
        vn::Thread::threadDictionary().erase(key);
        auto formatter =
            vn::DateFormatter::dateFormatterWithTimeZone_UTC_Locale_en_US_POSIX_forDateFormat(
                pattern);
        const std::string text = formatter->stringFromDate(instant);
        benchmark::DoNotOptimize(formatter->dateFromString(text));
    }
    recordInputLength(state);
}
BENCHMARK(BM_DatePatternOfAdjacentFields)->Apply(overInputLengths)->Complexity(benchmark::oN);

// Reading a long digit run as a date.
void BM_DateTextOfNines(benchmark::State& state) {
    const std::string text = repeated("9", inputLength(state));
    const auto formatter =
        vn::DateFormatter::dateFormatterWithTimeZone_UTC_Locale_en_US_POSIX_forDateFormat(
            "yyyy-MM-dd");
    for (auto _ : state) benchmark::DoNotOptimize(formatter->dateFromString(text));
    recordInputLength(state);
}
BENCHMARK(BM_DateTextOfNines)->Apply(overInputLengths)->Complexity(benchmark::oN);

}  // namespace

BENCHMARK_MAIN();

// The hot paths of formatting: a cached picture formatter formatting one number (beside a
// prebuilt ICU formatter doing the same work, to show what the cache costs), a cache miss,
// and the model's date truncation and JSON text.
#include <benchmark/benchmark.h>
#include <unicode/decimfmt.h>
#include <unicode/numfmt.h>

#include <memory>
#include <string>

#include "vn/formatting/DateVN.h"
#include "vn/formatting/NumberFormatter.h"
#include "vn/platform/Thread.h"

namespace {

constexpr const char* kPicture = "ZZZ,ZZ9.99";
constexpr const char* kPattern = "###,##0.00";  // what the picture translates to
constexpr double kValue = 1234567.891;

// The cached path: one key, one lookup, then the format.
void BM_CachedPictureFormatterFormat(benchmark::State& state) {
    const std::optional<std::string> locale = "en_US";
    const vn::Number number(kValue);
    for (auto _ : state) {
        std::string text = vn::NumberFormatter::numberFormatterForVNPicture(kPicture, locale, true)
                               ->stringFromNumber(number);
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(BM_CachedPictureFormatterFormat);

// The cache alone: building the key and finding the formatter.
void BM_CachedPictureFormatterLookup(benchmark::State& state) {
    const std::optional<std::string> locale = "en_US";
    for (auto _ : state) {
        auto formatter = vn::NumberFormatter::numberFormatterForVNPicture(kPicture, locale, true);
        benchmark::DoNotOptimize(formatter);
    }
}
BENCHMARK(BM_CachedPictureFormatterLookup);

// The floor: an ICU formatter built once, formatting the same number with the same pattern
// into UTF-8.
void BM_PrebuiltIcuDecimalFormat(benchmark::State& state) {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::NumberFormat> base(
        icu::NumberFormat::createInstance(icu::Locale("en_US"), UNUM_DECIMAL, status));
    auto* format = dynamic_cast<icu::DecimalFormat*>(base.get());
    format->applyPattern(icu::UnicodeString(kPattern), status);
    if (U_FAILURE(status)) state.SkipWithError("ICU formatter not available");
    for (auto _ : state) {
        icu::UnicodeString text;
        format->format(kValue, text);
        std::string utf8;
        text.toUTF8String(utf8);
        benchmark::DoNotOptimize(utf8);
    }
}
BENCHMARK(BM_PrebuiltIcuDecimalFormat);

// A miss: the entry is removed before every request, so each one translates the picture and
// builds an ICU formatter.
void BM_PictureFormatterCacheMiss(benchmark::State& state) {
    const std::optional<std::string> locale = "en_US";
    const std::string key =
        std::string("VNNSNumberFormatterWithVNPicture") + kPicture + "LocaleIden_US";
    for (auto _ : state) {
        vn::Thread::threadDictionary().erase(key);
        auto formatter = vn::NumberFormatter::numberFormatterForVNPicture(kPicture, locale, true);
        benchmark::DoNotOptimize(formatter);
    }
}
BENCHMARK(BM_PictureFormatterCacheMiss);

void BM_VnDate(benchmark::State& state) {
    vn::Date date = vn::Date::fromTimeIntervalSince1970(1583058030.25);
    for (auto _ : state) {
        benchmark::DoNotOptimize(vn::DateVN::vnDate(date));
        date = date.addingTimeInterval(1);
    }
}
BENCHMARK(BM_VnDate);

void BM_JsonOfDateTime(benchmark::State& state) {
    vn::Date date = vn::Date::fromTimeIntervalSince1970(1583058030.0);
    for (auto _ : state) {
        std::string text = vn::DateVN::json(date);
        benchmark::DoNotOptimize(text);
        date = date.addingTimeInterval(1);
    }
}
BENCHMARK(BM_JsonOfDateTime);

}  // namespace

BENCHMARK_MAIN();

// How keyed archiving scales: one long text (ASCII and not), and many distinct short texts,
// numbers and dictionary keys (one per 16 bytes), from 1 KiB to 1 MiB.
#include <benchmark/benchmark.h>

#include <string>

#include "testing/InputLengthScaling.h"
#include "vn/coding/KeyedArchiver.h"

namespace {

using vn::testing::inputLength;
using vn::testing::overInputLengths;
using vn::testing::recordInputLength;
using vn::testing::repeated;

void archive(benchmark::State& state, const vn::Value& value) {
    for (auto _ : state) {
        auto bytes = vn::KeyedArchiver::archivedDataWithRootObject(value);
        if (!bytes) state.SkipWithError("the value did not archive");
        benchmark::DoNotOptimize(bytes);
    }
    recordInputLength(state);
}

void BM_ArchiveAsciiText(benchmark::State& state) {
    archive(state, vn::Value(repeated("a", inputLength(state))));
}
void BM_ArchiveAccentedText(benchmark::State& state) {
    archive(state,
            vn::Value(repeated("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", inputLength(state))));
}
void BM_ArchiveDistinctTexts(benchmark::State& state) {
    vn::Value::Array texts;
    for (std::size_t i = 0; i < inputLength(state) / 16; ++i)
        texts.emplace_back(std::to_string(1000000 + i));
    archive(state, vn::Value(std::move(texts)));
}
void BM_ArchiveDistinctNumbers(benchmark::State& state) {
    vn::Value::Array numbers;
    for (std::size_t i = 0; i < inputLength(state) / 16; ++i)
        numbers.emplace_back(vn::Number(static_cast<std::int64_t>(i)));
    archive(state, vn::Value(std::move(numbers)));
}
void BM_ArchiveManyKeys(benchmark::State& state) {
    vn::Value::Dictionary members;
    for (std::size_t i = 0; i < inputLength(state) / 16; ++i)
        members.emplace(std::to_string(1000000 + i), vn::Value(std::string("v")));
    archive(state, vn::Value(std::move(members)));
}

BENCHMARK(BM_ArchiveAsciiText)->Apply(overInputLengths)->Complexity(benchmark::oN);
BENCHMARK(BM_ArchiveAccentedText)->Apply(overInputLengths)->Complexity(benchmark::oN);
BENCHMARK(BM_ArchiveDistinctTexts)->Apply(overInputLengths)->Complexity(benchmark::oNLogN);
BENCHMARK(BM_ArchiveDistinctNumbers)->Apply(overInputLengths)->Complexity(benchmark::oNLogN);
BENCHMARK(BM_ArchiveManyKeys)->Apply(overInputLengths)->Complexity(benchmark::oNLogN);

}  // namespace

BENCHMARK_MAIN();

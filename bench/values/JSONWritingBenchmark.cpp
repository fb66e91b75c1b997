// How writing JSON scales with the size of the value: one long text (plain, full of escapes,
// accented, malformed), deep nesting and many short members, from 1 KiB to 1 MiB.
#include <benchmark/benchmark.h>

#include <string>

#include "vn/values/JSON.h"

namespace {

std::string repeated(std::string_view unit, std::size_t length) {
    std::string text;
    text.reserve(length + unit.size());
    while (text.size() < length) text.append(unit);
    text.resize(length);
    return text;
}

void writeValue(benchmark::State& state, const vn::Value& value) {
    for (auto _ : state) benchmark::DoNotOptimize(vn::jsonString(value));
    state.SetComplexityN(state.range(0));
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
}

std::size_t lengthOf(const benchmark::State& state) {
    return static_cast<std::size_t>(state.range(0));
}

void BM_JSONPlainText(benchmark::State& state) {
    writeValue(state, vn::Value(repeated("a", lengthOf(state))));
}
void BM_JSONEscapedText(benchmark::State& state) {
    writeValue(state, vn::Value(repeated("\"\n\x01\\", lengthOf(state))));
}
void BM_JSONAccentedText(benchmark::State& state) {
    writeValue(state, vn::Value(repeated("\xC3\xA9\xE2\x82\xAC", lengthOf(state))));
}
void BM_JSONMalformedText(benchmark::State& state) {
    writeValue(state, vn::Value(repeated("\xFF", lengthOf(state))));
}
// One member per 16 bytes of text.
void BM_JSONManyMembers(benchmark::State& state) {
    vn::Value::Dictionary members;
    for (std::size_t i = 0; i < lengthOf(state) / 16; ++i)
        members.emplace(std::to_string(1000000 + i), vn::Value(std::string("abcdefgh")));
    writeValue(state, vn::Value(std::move(members)));
}

// Arrays nested one level per 64 bytes, around a text full of escapes.
void BM_JSONDeepNesting(benchmark::State& state) {
    vn::Value value(repeated("\"\\", 64));
    for (std::size_t i = 0; i < lengthOf(state) / 64; ++i)
        value = vn::Value(vn::Value::Array{value});
    writeValue(state, value);
}

BENCHMARK(BM_JSONPlainText)->RangeMultiplier(8)->Range(1 << 10, 1 << 20)->Complexity(benchmark::oN);
BENCHMARK(BM_JSONEscapedText)
    ->RangeMultiplier(8)
    ->Range(1 << 10, 1 << 20)
    ->Complexity(benchmark::oN);
BENCHMARK(BM_JSONAccentedText)
    ->RangeMultiplier(8)
    ->Range(1 << 10, 1 << 20)
    ->Complexity(benchmark::oN);
BENCHMARK(BM_JSONMalformedText)
    ->RangeMultiplier(8)
    ->Range(1 << 10, 1 << 20)
    ->Complexity(benchmark::oN);
BENCHMARK(BM_JSONDeepNesting)
    ->RangeMultiplier(8)
    ->Range(1 << 10, 1 << 20)
    ->Complexity(benchmark::oN);
BENCHMARK(BM_JSONManyMembers)
    ->RangeMultiplier(8)
    ->Range(1 << 10, 1 << 20)
    ->Complexity(benchmark::oNLogN);

}  // namespace

BENCHMARK_MAIN();

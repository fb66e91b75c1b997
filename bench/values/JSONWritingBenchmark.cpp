// How writing JSON scales with the size of the value: one long text (plain, full of escapes,
// accented, malformed), deep nesting and many short members, from 1 KiB to 1 MiB.
#include <benchmark/benchmark.h>

#include <string>

#include "testing/InputLengthScaling.h"
#include "vn/values/JSON.h"

namespace {

using vn::testing::inputLength;
using vn::testing::overInputLengths;
using vn::testing::recordInputLength;
using vn::testing::repeated;

void writeValue(benchmark::State& state, const vn::Value& value) {
    for (auto _ : state) benchmark::DoNotOptimize(vn::jsonString(value));
    recordInputLength(state);
}

void BM_JSONPlainText(benchmark::State& state) {
    writeValue(state, vn::Value(repeated("a", inputLength(state))));
}
void BM_JSONEscapedText(benchmark::State& state) {
    writeValue(state, vn::Value(repeated("\"\n\x01\\", inputLength(state))));
}
void BM_JSONAccentedText(benchmark::State& state) {
    writeValue(state, vn::Value(repeated("\xC3\xA9\xE2\x82\xAC", inputLength(state))));
}
void BM_JSONMalformedText(benchmark::State& state) {
    writeValue(state, vn::Value(repeated("\xFF", inputLength(state))));
}
// One member per 16 bytes of text.
void BM_JSONManyMembers(benchmark::State& state) {
    vn::Value::Dictionary members;
    for (std::size_t i = 0; i < inputLength(state) / 16; ++i)
        members.emplace(std::to_string(1000000 + i), vn::Value(std::string("abcdefgh")));
    writeValue(state, vn::Value(std::move(members)));
}

// Arrays nested one level per 64 bytes, around a text full of escapes.
void BM_JSONDeepNesting(benchmark::State& state) {
    vn::Value value(repeated("\"\\", 64));
    for (std::size_t i = 0; i < inputLength(state) / 64; ++i)
        value = vn::Value(vn::Value::Array{value});
    writeValue(state, value);
}

BENCHMARK(BM_JSONPlainText)->Apply(overInputLengths)->Complexity(benchmark::oN);
BENCHMARK(BM_JSONEscapedText)->Apply(overInputLengths)->Complexity(benchmark::oN);
BENCHMARK(BM_JSONAccentedText)->Apply(overInputLengths)->Complexity(benchmark::oN);
BENCHMARK(BM_JSONMalformedText)->Apply(overInputLengths)->Complexity(benchmark::oN);
BENCHMARK(BM_JSONDeepNesting)->Apply(overInputLengths)->Complexity(benchmark::oN);
BENCHMARK(BM_JSONManyMembers)->Apply(overInputLengths)->Complexity(benchmark::oNLogN);

}  // namespace

BENCHMARK_MAIN();

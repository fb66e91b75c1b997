// How reading a data-type name scales with the name's length, for ASCII, accented and malformed
// names, with and without a size suffix, from 1 KiB to 1 MiB.
#include <benchmark/benchmark.h>

#include <optional>
#include <string>

#include "testing/InputLengthScaling.h"
#include "vn/model/VNDataType.h"

namespace {

using vn::testing::inputLength;
using vn::testing::overInputLengths;
using vn::testing::recordInputLength;
using vn::testing::repeated;

void readName(benchmark::State& state, std::string_view unit, std::string_view suffix) {
    const vn::Value name(repeated(unit, static_cast<std::size_t>(state.range(0))) +
                         std::string(suffix));
    const vn::Value extended("x");
    std::optional<vn::Number> length;
    std::optional<vn::Number> decimals;
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            vn::VNDataTypeWithInfoFromString(name, extended, &length, &decimals));
    }
    recordInputLength(state);
}

void BM_AsciiName(benchmark::State& state) {
    readName(state, "numericx", "");
}
void BM_AccentedNameWithSize(benchmark::State& state) {
    readName(state, "\xC3\xA9", "(10,2)");
}
void BM_MalformedName(benchmark::State& state) {
    readName(state, "\xFF", "");
}
void BM_TypPrefixedAccentedName(benchmark::State& state) {
    readName(state, "typ/\xC3\x9F", "");
}

BENCHMARK(BM_AsciiName)->Apply(overInputLengths)->Complexity(benchmark::oN);
BENCHMARK(BM_AccentedNameWithSize)->Apply(overInputLengths)->Complexity(benchmark::oN);
BENCHMARK(BM_MalformedName)->Apply(overInputLengths)->Complexity(benchmark::oN);
BENCHMARK(BM_TypPrefixedAccentedName)->Apply(overInputLengths)->Complexity(benchmark::oN);

}  // namespace

BENCHMARK_MAIN();

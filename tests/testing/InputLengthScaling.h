// What the benchmarks that fit a complexity to the input's length share: inputs from 1 KiB to
// 1 MiB (by factors of 8), texts made to a length, and the recording of that length.
// Header-only; for benchmark programs.
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vn::testing {

// unit repeated and cut to exactly length bytes (so possibly inside a UTF-8 sequence).
inline std::string repeated(std::string_view unit, std::size_t length) {
    std::string text;
    text.reserve(length + unit.size());
    while (text.size() < length) text.append(unit);
    text.resize(length);
    return text;
}

// The input length the benchmark runs with.
inline std::size_t inputLength(const benchmark::State& state) {
    return static_cast<std::size_t>(state.range(0));
}

// Records the input length as the complexity's N and as the bytes processed.
inline void recordInputLength(benchmark::State& state) {
    state.SetComplexityN(state.range(0));
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
}

// For BENCHMARK(...)->Apply(overInputLengths)->Complexity(...).
inline void overInputLengths(benchmark::internal::Benchmark* benchmark) {
    benchmark->RangeMultiplier(8)->Range(1 << 10, 1 << 20);
}

}  // namespace vn::testing

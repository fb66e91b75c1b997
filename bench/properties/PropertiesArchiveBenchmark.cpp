// Keyed archiving of a property bag of 1,000 mixed values: encoding to binary property-list
// bytes and decoding them back. The "archive_bytes" counter is the archive's size.
#include <benchmark/benchmark.h>

#include <string>

#include "vn/coding/KeyedArchiver.h"
#include "vn/coding/KeyedUnarchiver.h"
#include "vn/properties/VNCodingPropertiesObject.h"

namespace {

using namespace vn;

constexpr int kValueCount = 1000;

// Ten kinds of value in turn: texts (some repeated, some non-ASCII), integers, doubles,
// booleans, dates, data, decimals, null markers, small arrays and small dictionaries.
Value mixedValue(int index) {
    switch (index % 10) {
        case 0:
            return "text number " + std::to_string(index);
        case 1:
            return index % 3 == 0 ? Value("repeated") : Value("grüße " + std::to_string(index));
        case 2:
            return static_cast<std::int64_t>(index) * 7919;
        case 3:
            return index / 7.0;
        case 4:
            return index % 2 == 0;
        case 5:
            return Date{700000000.0 + index};
        case 6:
            return Data(16, static_cast<std::uint8_t>(index));
        case 7:
            return Decimal::parse(std::to_string(index) + ".25").value();
        case 8:
            return Value::null();
        default:
            return Value::Array{index, "element",
                                Value::Dictionary{{"key", index}, {"flag", true}}};
    }
}

std::shared_ptr<VNCodingPropertiesObject> mixedBag() {
    Value::Dictionary properties;
    for (int i = 0; i < kValueCount; ++i)
        properties.emplace("property" + std::to_string(i), mixedValue(i));
    return std::make_shared<VNCodingPropertiesObject>(std::move(properties));
}

void BM_ArchiveBagOf1000MixedValues(benchmark::State& state) {
    const Value bag(mixedBag());
    std::size_t bytes = 0;
    for (auto _ : state) {
        auto data = KeyedArchiver::archivedDataWithRootObject(bag);
        bytes = data->size();
        benchmark::DoNotOptimize(data);
    }
    state.counters["archive_bytes"] = static_cast<double>(bytes);
    state.SetItemsProcessed(state.iterations() * kValueCount);
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes));
}
BENCHMARK(BM_ArchiveBagOf1000MixedValues)->Unit(benchmark::kMicrosecond);

void BM_UnarchiveBagOf1000MixedValues(benchmark::State& state) {
    const Data data = *KeyedArchiver::archivedDataWithRootObject(Value(mixedBag()));
    for (auto _ : state) {
        auto bag = KeyedUnarchiver::unarchivedObjectOfClass<VNCodingPropertiesObject>(data);
        if (!bag) state.SkipWithError("the archive did not decode");
        benchmark::DoNotOptimize(bag);
    }
    state.counters["archive_bytes"] = static_cast<double>(data.size());
    state.SetItemsProcessed(state.iterations() * kValueCount);
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * data.size()));
}
BENCHMARK(BM_UnarchiveBagOf1000MixedValues)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();

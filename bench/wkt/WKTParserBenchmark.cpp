// Parse throughput of WKTParser on a generated corpus of points, lines, polygons with holes
// and multipolygons, side by side with GEOS's WKT reader on the same texts. Every geometry a
// pass reads is kept until the pass ends, for both parsers; freeing them is not timed.
// At the end the program prints the throughput ratio per corpus.
//
// The heap keeps the memory a pass freed for the next one, as a running application's heap
// does; otherwise the C library hands it back to the system after every pass and the next
// pass of either parser pays a page fault per fresh page.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstdio>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "vn/wkt/WKTParser.h"

#ifdef VN_BENCHMARK_WITH_GEOS
#include <geos_c.h>
#endif

namespace {

class CorpusWriter {
  public:
    explicit CorpusWriter(unsigned seed) : random_(seed) {}

    std::string point() { return "POINT (" + coordinate() + ")"; }

    std::string line(int vertices) { return "LINESTRING (" + coordinates(vertices) + ")"; }

    // An exterior ring and holes, each closed.
    std::string polygonBody(int vertices, int holes) {
        std::string body = "(" + ring(vertices) + ")";
        for (int i = 0; i < holes; ++i) body += ", (" + ring(vertices / 4) + ")";
        return body;
    }

    std::string polygon(int vertices, int holes) {
        return "POLYGON (" + polygonBody(vertices, holes) + ")";
    }

    std::string multiPolygon(int polygons, int vertices, int holes) {
        std::string text = "MULTIPOLYGON (";
        for (int i = 0; i < polygons; ++i)
            text += (i ? ", (" : "(") + polygonBody(vertices, holes) + ")";
        return text + ")";
    }

  private:
    std::string number(double low, double high) {
        char buffer[32];
        std::snprintf(buffer, sizeof buffer, "%.6f",
                      std::uniform_real_distribution<double>(low, high)(random_));
        return buffer;
    }
    std::string coordinate() { return number(-180, 180) + " " + number(-90, 90); }
    std::string coordinates(int count) {
        std::string text;
        for (int i = 0; i < count; ++i) text += (i ? ", " : "") + coordinate();
        return text;
    }
    std::string ring(int vertices) {
        const std::string first = coordinate();
        std::string text = first;
        for (int i = 1; i + 1 < vertices; ++i) text += ", " + coordinate();
        return text + ", " + first;
    }

    std::mt19937_64 random_;
};

struct Corpus {
    std::vector<std::string> texts;
    std::size_t bytes = 0;
};

const std::map<std::string, Corpus>& corpora() {
    static const std::map<std::string, Corpus> all = [] {
        CorpusWriter writer(20240611);
        std::map<std::string, std::vector<std::string>> texts;
        for (int i = 0; i < 4000; ++i) texts["points"].push_back(writer.point());
        for (int i = 0; i < 400; ++i) texts["lines"].push_back(writer.line(50));
        for (int i = 0; i < 200; ++i) texts["polygons"].push_back(writer.polygon(80, 2));
        for (int i = 0; i < 60; ++i)
            texts["multipolygons"].push_back(writer.multiPolygon(4, 60, 1));
        for (const auto& kind : {"points", "lines", "polygons", "multipolygons"}) {
            for (const auto& text : texts[kind]) texts["mixed"].push_back(text);
        }
        std::map<std::string, Corpus> result;
        for (auto& [name, list] : texts) {
            Corpus corpus{std::move(list), 0};
            for (const auto& text : corpus.texts) corpus.bytes += text.size();
            result[name] = std::move(corpus);
        }
        return result;
    }();
    return all;
}

void reportThroughput(benchmark::State& state, const Corpus& corpus) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * corpus.bytes));
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * corpus.texts.size()));
}

void VNParse(benchmark::State& state, const std::string& name) {
    const Corpus& corpus = corpora().at(name);
    std::vector<vn::WKTGeometryPtr> kept;
    kept.reserve(corpus.texts.size());
    for (auto _ : state) {
        for (const auto& text : corpus.texts) kept.push_back(vn::WKTParser::parseGeometry(text));
        state.PauseTiming();
        for (const auto& geometry : kept) {
            if (!geometry) state.SkipWithError("a corpus text did not parse");
        }
        kept.clear();
        state.ResumeTiming();
    }
    reportThroughput(state, corpus);
}

#ifdef VN_BENCHMARK_WITH_GEOS
void GEOSParse(benchmark::State& state, const std::string& name) {
    const Corpus& corpus = corpora().at(name);
    GEOSContextHandle_t context = GEOS_init_r();
    GEOSWKTReader* reader = GEOSWKTReader_create_r(context);
    std::vector<GEOSGeometry*> kept;
    kept.reserve(corpus.texts.size());
    for (auto _ : state) {
        for (const auto& text : corpus.texts)
            kept.push_back(GEOSWKTReader_read_r(context, reader, text.c_str()));
        state.PauseTiming();
        for (GEOSGeometry* geometry : kept) {
            if (!geometry) state.SkipWithError("a corpus text did not parse");
            GEOSGeom_destroy_r(context, geometry);
        }
        kept.clear();
        state.ResumeTiming();
    }
    GEOSWKTReader_destroy_r(context, reader);
    GEOS_finish_r(context);
    reportThroughput(state, corpus);
}
#else
void GEOSParse(benchmark::State& state, const std::string&) {
    state.SkipWithError("GEOS (libgeos-dev) is not installed: no comparison");
}
#endif

// Prints the usual table, then VN's throughput over GEOS's for each corpus (the median when
// the runs are repeated).
class RatioReporter : public benchmark::ConsoleReporter {
  public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.error_occurred ||
                !(run.aggregate_name.empty() || run.aggregate_name == "median"))
                continue;
            const auto rate = run.counters.find("bytes_per_second");
            if (rate != run.counters.end()) rates_[run.run_name.function_name] = rate->second.value;
        }
    }

    void Finalize() override {
        ConsoleReporter::Finalize();
        for (const auto& [name, corpus] : corpora()) {
            const auto vn = rates_.find("VNParse/" + name);
            const auto geos = rates_.find("GEOSParse/" + name);
            if (vn == rates_.end() || geos == rates_.end() || geos->second <= 0) continue;
            std::printf(
                "%-16s VN %7.1f MB/s  GEOS %7.1f MB/s  ratio %.2fx (%zu texts, %zu bytes)\n",
                name.c_str(), vn->second / 1e6, geos->second / 1e6, vn->second / geos->second,
                corpus.texts.size(), corpus.bytes);
        }
    }

  private:
    std::map<std::string, double> rates_;
};

}  // namespace

int main(int argc, char** argv) {
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    for (const auto& [name, corpus] : corpora()) {
        benchmark::RegisterBenchmark(("VNParse/" + name).c_str(), VNParse, name)
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(("GEOSParse/" + name).c_str(), GEOSParse, name)
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}

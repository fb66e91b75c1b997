// The cost of VNLog::logMessage: with every sink off (only the switch checks may run), and
// with the file on, beside a bare write + fdatasync loop on the same file system.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <string>

#include "vn/log/VNLog.h"
#include "vn/platform/ExecutionEnvironment.h"
#include "vn/platform/FileSystem.h"
#include "vn/platform/UserDefaults.h"

namespace {

const std::string kMessage = "GET https://example.com/api/items?page=2 answered 200 in 35 ms";

void setSwitches(bool tolvarApp, bool logEnabled) {
    vn::VNLog::reset();
    vn::VNUtilities::setShowDeveloperInfo(false);
    vn::VNUtilities::setIsTolvarApp(tolvarApp);
    vn::UserDefaults::standard().setBool(logEnabled, vn::VNLog::logEnabledPreferenceKey);
}

void BM_LogMessageAllSinksOff(benchmark::State& state) {
    setSwitches(false, false);
    for (auto _ : state) vn::VNLog::logMessage(kMessage);
}
BENCHMARK(BM_LogMessageAllSinksOff);

// The Tolvar app with the log preference off: the preference is read from the defaults.
void BM_LogMessageAllSinksOffPreferenceRead(benchmark::State& state) {
    setSwitches(true, false);
    for (auto _ : state) vn::VNLog::logMessage(kMessage);
    setSwitches(false, false);
}
BENCHMARK(BM_LogMessageAllSinksOffPreferenceRead);

void BM_LogFormatAllSinksOff(benchmark::State& state) {
    setSwitches(false, false);
    std::int64_t counter = 0;
    for (auto _ : state) vn::VNLog::log("request %d answered %@", ++counter, kMessage);
}
BENCHMARK(BM_LogFormatAllSinksOff);

void BM_LogMessageToFile(benchmark::State& state) {
    setSwitches(true, true);
    for (auto _ : state) vn::VNLog::logMessage(kMessage);
    state.SetItemsProcessed(state.iterations());
    setSwitches(false, false);
}
BENCHMARK(BM_LogMessageToFile)->UseRealTime();

// The floor for the file sink: the same line written and synchronised by hand, in a file
// beside the log file, which is removed again when done.
class BareFile {
  public:
    BareFile()
        : path_(vn::temporaryDirectory() + "bare-write-benchmark.log"),
          descriptor_(::open(path_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644)) {}
    ~BareFile() {
        if (descriptor_ < 0) return;
        ::close(descriptor_);
        ::unlink(path_.c_str());
    }
    BareFile(const BareFile&) = delete;
    BareFile& operator=(const BareFile&) = delete;

    bool isOpen() const { return descriptor_ >= 0; }
    void writeAndSynchronise(const std::string& line) {
        benchmark::DoNotOptimize(::write(descriptor_, line.data(), line.size()));
        ::fdatasync(descriptor_);
    }

  private:
    std::string path_;
    int descriptor_;
};

void BM_BareWriteAndFdatasync(benchmark::State& state) {
    const std::string line = kMessage + "\n";
    BareFile file;
    if (!file.isOpen()) {
        state.SkipWithError("cannot create the file");
        return;
    }
    for (auto _ : state) file.writeAndSynchronise(line);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_BareWriteAndFdatasync)->UseRealTime();

// Both in one loop, one after the other, so that a busy disk slows both alike: the counters
// are each side's messages per second and their ratio (log / bare).
void BM_LogBesideBareWriteAlternating(benchmark::State& state) {
    const std::string line = kMessage + "\n";
    BareFile file;
    if (!file.isOpen()) {
        state.SkipWithError("cannot create the file");
        return;
    }
    setSwitches(true, true);
    using Clock = std::chrono::steady_clock;
    Clock::duration logTime{};
    Clock::duration bareTime{};
    for (auto _ : state) {
        const auto start = Clock::now();
        vn::VNLog::logMessage(kMessage);
        const auto logged = Clock::now();
        file.writeAndSynchronise(line);
        const auto written = Clock::now();
        logTime += logged - start;
        bareTime += written - logged;
    }
    const double iterations = static_cast<double>(state.iterations());
    const double logRate = iterations / std::chrono::duration<double>(logTime).count();
    const double bareRate = iterations / std::chrono::duration<double>(bareTime).count();
    state.counters["log_per_s"] = logRate;
    state.counters["bare_per_s"] = bareRate;
    state.counters["ratio"] = logRate / bareRate;
    setSwitches(false, false);
}
BENCHMARK(BM_LogBesideBareWriteAlternating)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();

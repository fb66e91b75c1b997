// Dispatch costs: an asynchronous submission to a global queue next to a bare Asio post to an
// asio::thread_pool of the same size (each measured end to end: a batch is submitted and
// waited for), a serial queue's submissions, and the round trip main -> background -> main
// through vn_dispatch_on_background with a completion, with the benchmark thread acting as the
// host's main thread.
#include <benchmark/benchmark.h>
#include <asio/post.hpp>
#include <asio/thread_pool.hpp>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "vn/concurrency/DispatchQueue.h"
#include "vn/concurrency/RunLoop.h"
#include "vn/concurrency/VNDispatch.h"
#include "vn/platform/Thread.h"

namespace {

using namespace std::chrono_literals;

constexpr int kBatch = 1000;

// The worker count of the library's pool, so that both sides have the same threads.
unsigned poolThreads() {
    return std::max(4u, std::thread::hardware_concurrency());
}

// Counts finished blocks and wakes the benchmark thread after the last one.
class Latch {
  public:
    void arm(int count) {
        pending_ = count;
        std::lock_guard lock(mutex_);
        done_ = false;
    }
    void countDown() {
        if (--pending_ > 0) return;
        std::lock_guard lock(mutex_);
        done_ = true;
        finished_.notify_one();
    }
    void wait() {
        std::unique_lock lock(mutex_);
        finished_.wait(lock, [this] { return done_; });
    }

  private:
    std::atomic<int> pending_{0};
    std::mutex mutex_;
    std::condition_variable finished_;
    bool done_ = false;
};

// Batches of empty blocks posted to queue, each batch waited for.
void postBatches(benchmark::State& state, const vn::DispatchQueuePtr& queue) {
    Latch latch;
    for (auto _ : state) {
        latch.arm(kBatch);
        for (int i = 0; i < kBatch; ++i) queue->async([&latch] { latch.countDown(); });
        latch.wait();
    }
    state.SetItemsProcessed(state.iterations() * kBatch);
}

void BM_GlobalQueueAsync(benchmark::State& state) {
    postBatches(state, vn::DispatchQueue::global());
}
BENCHMARK(BM_GlobalQueueAsync)->UseRealTime();

void BM_AsioThreadPoolPost(benchmark::State& state) {
    asio::thread_pool pool(poolThreads());
    Latch latch;
    for (auto _ : state) {
        latch.arm(kBatch);
        for (int i = 0; i < kBatch; ++i) asio::post(pool, [&latch] { latch.countDown(); });
        latch.wait();
    }
    state.SetItemsProcessed(state.iterations() * kBatch);
    pool.join();
}
BENCHMARK(BM_AsioThreadPoolPost)->UseRealTime();

void BM_SerialQueueAsync(benchmark::State& state) {
    postBatches(state, vn::DispatchQueue::serial("vn.bench.serial"));
}
BENCHMARK(BM_SerialQueueAsync)->UseRealTime();

void BM_BackgroundAndBackToMain(benchmark::State& state) {
    vn::Thread::markMainThread();
    for (auto _ : state) {
        bool back = false;
        vn::vn_dispatch_on_background([] {}, [&back] { back = true; });
        if (!vn::RunLoop::main().runUntil([&back] { return back; }, 10s)) {
            state.SkipWithError("the completion did not come back");
            break;
        }
    }
}
BENCHMARK(BM_BackgroundAndBackToMain)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();

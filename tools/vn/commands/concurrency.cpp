// The tour's section on concurrency: work moved to a background queue and back to the main
// thread (the tool's main thread pumps the main run loop, as a host application does),
// operations with dependencies, and a cancelled composite. Also the dispatch-roundtrip
// command.
#include <atomic>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "../Registry.h"
#include "vn/concurrency/OperationQueue.h"
#include "vn/concurrency/RunLoop.h"
#include "vn/concurrency/VNCancelableOperation.h"
#include "vn/concurrency/VNDispatch.h"
#include "vn/platform/Thread.h"

namespace {

using namespace vn;
using namespace std::chrono_literals;

std::string where() {
    const DispatchQueuePtr queue = DispatchQueue::current();
    return std::string(queue ? queue->label() : "no queue") +
           (Thread::isMainThread() ? ", main thread" : ", background thread");
}

void showBackgroundAndBack() {
    std::printf("vn_dispatch_on_background from the main thread:\n");
    std::atomic<bool> completed{false};
    long sum = 0;
    std::string workPlace, completionPlace;
    vn_dispatch_on_background(
        [&] {
            for (long i = 1; i <= 1000; ++i) sum += i;
            workPlace = where();
        },
        [&] {
            completionPlace = where();
            completed = true;
        });
    std::printf("  returned at once (completion ran yet: %s)\n", completed ? "yes" : "no");
    RunLoop::main().runUntil([&] { return completed.load(); }, 10s);
    std::printf("  work:       sum of 1..1000 = %ld on %s\n", sum, workPlace.c_str());
    std::printf("  completion: on %s, after the main run loop was pumped\n",
                completionPlace.c_str());

    std::printf("vn_dispatch_on_background from a background thread runs inline there:\n");
    std::vector<std::string> steps;
    std::thread([&] {
        vn_dispatch_on_background([&] { steps.push_back("work on " + where()); },
                                  [&] { steps.push_back("completion on " + where()); });
    }).join();
    for (const auto& step : steps) std::printf("  %s\n", step.c_str());
}

void showOperations() {
    std::printf(
        "\nOperations: \"parse\" and \"index\" (in either order) after \"download\", \"show\" "
        "last:\n");
    std::mutex mutex;
    std::vector<std::string> order;
    const auto step = [&](const char* name) {
        return BlockOperation::blockOperationWithBlock([&, name] {
            std::lock_guard lock(mutex);
            order.push_back(name);
        });
    };
    auto download = step("download"), parse = step("parse"), index = step("index"),
         show = step("show");
    parse->addDependency(download);
    index->addDependency(download);
    show->addDependency(parse);
    show->addDependency(index);
    OperationQueue queue;
    queue.addOperations({show, index, parse, download}, true);
    std::printf("  ran:");
    for (const auto& name : order) std::printf(" %s", name.c_str());
    std::printf("\n");
}

void showCancelledComposite() {
    std::printf("\nA composite of a cancel block, an operation and a wrapper, cancelled twice:\n");
    auto block = std::make_shared<VNCancelableOperationWithBlock>(
        [] { std::printf("  cancel block called\n"); });
    auto operation = std::make_shared<Operation>();
    auto firstStep = std::make_shared<VNCancelableOperationWithBlock>(
        [] { std::printf("  step 1 cancelled\n"); });
    auto wrapper = std::make_shared<VNCancelableOperationWrapper>(firstStep);
    std::printf("  the wrapper moves on to step 2:\n");
    wrapper->setInnerOperation(std::make_shared<VNCancelableOperationWithBlock>(
        [] { std::printf("  step 2 cancelled\n"); }));
    VNCancelableOperationComposite composite({block, operation, wrapper});
    std::printf("  cancel:\n");
    composite.cancel();
    std::printf("  cancel again (nothing more happens):\n");
    composite.cancel();
    std::printf("  composite cancelled: %s, operation cancelled: %s\n",
                composite.isCancelled() ? "yes" : "no", operation->isCancelled() ? "yes" : "no");
}

void showConcurrency() {
    showBackgroundAndBack();
    showOperations();
    showCancelledComposite();
}

int runDispatchRoundtrip(const tool::Arguments& arguments);

const tool::Command kDispatchRoundtrip{
    "dispatch-roundtrip", "dispatch-roundtrip [COUNT]",
    "time work sent to a background queue and completed back on the main thread (COUNT 1 to "
    "100000, default 1000)",
    "vn dispatch-roundtrip 500", runDispatchRoundtrip};

constexpr long kMostRoundTrips = 100000;

int runDispatchRoundtrip(const tool::Arguments& arguments) {
    long count = 1000;
    if (arguments.size() > 1) return tool::usageError(kDispatchRoundtrip);
    if (!arguments.empty()) {
        const std::string& text = arguments[0];
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
        if (error != std::errc() || end != text.data() + text.size() || count < 1 ||
            count > kMostRoundTrips)
            return tool::badData(kDispatchRoundtrip, "COUNT must be a whole number from 1 to " +
                                                         std::to_string(kMostRoundTrips) +
                                                         ", not \"" + text + "\"");
    }
    const auto start = std::chrono::steady_clock::now();
    for (long i = 0; i < count; ++i) {
        bool back = false;
        vn_dispatch_on_background([] {}, [&] { back = true; });
        if (!RunLoop::main().runUntil([&] { return back; }, 10s))
            return tool::badData(kDispatchRoundtrip, "a round trip did not come back in 10 s");
    }
    const std::chrono::duration<double, std::micro> elapsed =
        std::chrono::steady_clock::now() - start;
    std::printf("%ld round trips main -> background -> main: %.1f us each\n", count,
                elapsed.count() / count);
    return tool::kSuccess;
}

const tool::CommandRegistration kDispatchRoundtripRegistration{kDispatchRoundtrip};

const tool::TourRegistration kConcurrencyTour{
    {30, "Concurrency: background and back, operations, cancellation", showConcurrency}};

}  // namespace

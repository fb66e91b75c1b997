#include "vn/platform/Thread.h"

#include <cxxabi.h>
#include <execinfo.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <thread>

namespace vn {
namespace {

std::atomic<std::thread::id>& mainThreadId() {
    static std::atomic<std::thread::id> id{std::this_thread::get_id()};
    return id;
}

// Captures the loading thread as the main thread before main() starts.
[[maybe_unused]] const bool kMainThreadCaptured = (mainThreadId(), true);

// "image(mangled+0x1f) [0x...]" as glibc writes it, turned into "image function + 0x1f".
std::string readableFrame(std::size_t index, const char* raw) {
    std::string frame = raw;
    std::string image = frame;
    std::string function = "???";
    std::string offset = "0";
    const auto open = frame.find('(');
    const auto plus = frame.find('+', open);
    const auto close = frame.find(')', open);
    if (open != std::string::npos && close != std::string::npos) {
        image = frame.substr(0, open);
        const auto slash = image.rfind('/');
        if (slash != std::string::npos) image = image.substr(slash + 1);
        const auto nameEnd = plus != std::string::npos && plus < close ? plus : close;
        const std::string mangled = frame.substr(open + 1, nameEnd - open - 1);
        if (!mangled.empty()) {
            int status = 0;
            std::unique_ptr<char, void (*)(void*)> demangled(
                abi::__cxa_demangle(mangled.c_str(), nullptr, nullptr, &status), std::free);
            function = status == 0 && demangled ? demangled.get() : mangled;
        }
        if (plus != std::string::npos && plus < close)
            offset = frame.substr(plus + 1, close - plus - 1);
    }
    return std::to_string(index) + " " + image + " " + function + " + " + offset;
}

}  // namespace

bool Thread::isMainThread() {
    return std::this_thread::get_id() == mainThreadId().load(std::memory_order_relaxed);
}

void Thread::markMainThread() {
    mainThreadId().store(std::this_thread::get_id(), std::memory_order_relaxed);
}

Value::Dictionary& Thread::threadDictionary() {
    thread_local Value::Dictionary dictionary;
    return dictionary;
}

[[gnu::noinline]] std::vector<std::string> Thread::callStackSymbols() {
    constexpr int kMaxFrames = 128;
    void* addresses[kMaxFrames];
    const int count = backtrace(addresses, kMaxFrames);
    std::unique_ptr<char*, void (*)(void*)> symbols(backtrace_symbols(addresses, count), std::free);
    std::vector<std::string> frames;
    if (!symbols) return frames;
    // The caller's frame is the one returning to our return address. Sanitizers that intercept
    // backtrace() add frames of their own before it, so it is searched for, not assumed at 1.
    int first = 1;
    const void* returnAddress = __builtin_return_address(0);
    for (int i = 0; i < count; ++i) {
        if (addresses[i] == returnAddress) {
            first = i;
            break;
        }
    }
    for (int i = first; i < count; ++i) {
        frames.push_back(readableFrame(frames.size(), symbols.get()[i]));
    }
    return frames;
}

}  // namespace vn

#include "vn/errors/VNUtilitiesFatalErrors.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>
#include <string>
#include <vector>

#include "vn/errors/NSErrorVNFoundation.h"
#include "vn/log/VNLog.h"
#include "vn/platform/Exception.h"
#include "vn/platform/ExecutionEnvironment.h"
#include "vn/platform/Thread.h"
#include "vn/services/VNFoundationServices.h"

namespace vn::VNUtilities {
namespace {

// "Stack Trace:\n\t<frame>\n\t<frame>\n", or nothing without frames.
std::string stackPart(const std::vector<std::string>& frames) {
    if (frames.empty()) return {};
    std::string part = "Stack Trace:";
    for (const std::string& frame : frames) {
        part += "\n\t";
        part += frame;
    }
    part += "\n";
    return part;
}

void dropInnermostFrames(std::vector<std::string>& frames, std::size_t count) {
    frames.erase(frames.begin(),
                 frames.begin() + static_cast<std::ptrdiff_t>(std::min(count, frames.size())));
}

// The shared core: logs or alerts, and produces the exception the helper must raise, if any.
// It and the public helpers stay out of line (and the helpers raise after it returns, so it is
// never a tail call) because the stack part leaves out exactly two frames: the core's and the
// helper's.
[[gnu::noinline]] std::optional<Exception> handleFatalError(
    std::string_view message, std::optional<std::string_view> exceptionName, bool showAlert,
    const FatalErrorRecoveryBlock& recoveryBlock) {
    if (showDeveloperInfo() && (!recoveryBlock || recoveryBlock())) {
        if (VNLog::hasActiveSink()) {
            std::vector<std::string> frames = Thread::callStackSymbols();
            dropInnermostFrames(frames, 2);
            VNLog::logMessage("ERROR: " + std::string(message) + stackPart(frames));
        }
        if (showAlert) {
            VNFoundationServices::alertMessageService()->showAlertForError(
                fatalVNErrorWithDeveloperDescription(message));
        }
        return std::nullopt;
    }
    if (const auto logger = VNFoundationServices::loggerService()) {
        logger->logMessage("ERROR: " + std::string(message), VNLoggerType::general,
                           VNLoggerLevel::error, false);
    }
    return Exception(std::string(exceptionName.value_or(NSInternalInconsistencyException)),
                     std::string(message));
}

void raiseIfProduced(const std::optional<Exception>& exception) {
    if (exception) throw *exception;
}

void printLine(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

struct Described {
    std::string description;
    std::vector<std::string> frames;
};

// What the current exception says about itself; called inside a catch handler's reach.
Described describeCurrentException() {
    try {
        throw;
    } catch (const Exception& exception) {
        return {exception.description(), exception.callStackSymbols()};
    } catch (const std::exception& exception) {
        return {exception.what(), Thread::callStackSymbols()};
    } catch (...) {
        return {"unknown exception", Thread::callStackSymbols()};
    }
}

std::atomic<std::terminate_handler> gPreviousTerminateHandler{nullptr};

[[noreturn]] void logCrash() {
    if (const std::exception_ptr crash = std::current_exception()) {
        try {
            std::rethrow_exception(crash);
        } catch (...) {
            const Described described = describeCurrentException();
            printLine("CRASH: " + described.description + "\n" + stackPart(described.frames));
        }
        try {
            if (const auto logger = VNFoundationServices::loggerService()) logger->endLogging();
        } catch (...) {
            const Described described = describeCurrentException();
            printLine("Unexpected exception: " + described.description + "\n" +
                      stackPart(described.frames));
        }
    }
    if (const std::terminate_handler previous = gPreviousTerminateHandler.load()) previous();
    std::abort();
}

}  // namespace

[[gnu::noinline]] void tryRecoverFatalError(std::string_view message) {
    raiseIfProduced(handleFatalError(message, std::nullopt, true, nullptr));
}

[[gnu::noinline]] void tryRecoverFatalError(std::string_view message,
                                            std::string_view exceptionName) {
    raiseIfProduced(handleFatalError(message, exceptionName, true, nullptr));
}

[[gnu::noinline]] void tryRecoverFatalError(std::string_view message,
                                            FatalErrorRecoveryBlock recoveryBlock) {
    raiseIfProduced(handleFatalError(message, std::nullopt, true, recoveryBlock));
}

[[gnu::noinline]] void tryRecoverFatalError(std::string_view message,
                                            std::optional<std::string_view> exceptionName,
                                            FatalErrorRecoveryBlock recoveryBlock) {
    raiseIfProduced(handleFatalError(message, exceptionName, true, recoveryBlock));
}

[[gnu::noinline]] ErrorPtr tryHandleFatalError(std::string_view message) {
    raiseIfProduced(handleFatalError(message, std::nullopt, false, nullptr));
    return fatalVNErrorWithDeveloperDescription(message);
}

[[gnu::noinline]] ErrorPtr tryHandleFatalError(std::string_view message,
                                               std::string_view exceptionName) {
    raiseIfProduced(handleFatalError(message, exceptionName, false, nullptr));
    return fatalVNErrorWithDeveloperDescription(message);
}

[[gnu::noinline]] ErrorPtr tryHandleFatalError(std::string_view message,
                                               FatalErrorRecoveryBlock recoveryBlock) {
    raiseIfProduced(handleFatalError(message, std::nullopt, false, recoveryBlock));
    return fatalVNErrorWithDeveloperDescription(message);
}

[[gnu::noinline]] ErrorPtr tryHandleFatalError(std::string_view message,
                                               std::optional<std::string_view> exceptionName,
                                               FatalErrorRecoveryBlock recoveryBlock) {
    raiseIfProduced(handleFatalError(message, exceptionName, false, recoveryBlock));
    return fatalVNErrorWithDeveloperDescription(message);
}

void installUncaughtExceptionsHandler() {
    const std::terminate_handler current = std::get_terminate();
    if (current == &logCrash) return;
    gPreviousTerminateHandler.store(current);
    std::set_terminate(&logCrash);
}

}  // namespace vn::VNUtilities

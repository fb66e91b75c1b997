// Fatal-error helpers of vn::VNUtilities: what the library does when it meets a state it
// cannot go on from, depending on developer mode (VNUtilities::showDeveloperInfo()).
//
// Developer mode, when there is no recovery block or the block answers true: the log receives
// "ERROR: " + message followed by the stack part ("Stack Trace:\n\t" + the caller's frames
// joined by "\n\t" + "\n", left out when there are no frames); the tryRecover... forms also
// show fatalVNErrorWithDeveloperDescription(message) through the registered alert message
// service (VNFoundationServices::alertMessageService()). Nothing is thrown.
//
// Otherwise (production mode, or the block answered false; in production mode the block is
// not called): the registered logger service, if any, receives "ERROR: " + message as type
// general, level error, not to the console; then a vn::Exception is thrown, named exceptionName
// or NSInternalInconsistencyException when none is given, with message as reason and no user
// info.
//
// They run on the caller's thread; the alert service is responsible for reaching the main
// thread.
#pragma once

#include <functional>
#include <optional>
#include <string_view>

#include "vn/platform/Error.h"

namespace vn::VNUtilities {

// Answers true when the program may continue after the fatal error.
using FatalErrorRecoveryBlock = std::function<bool()>;

void tryRecoverFatalError(std::string_view message);
void tryRecoverFatalError(std::string_view message, std::string_view exceptionName);
void tryRecoverFatalError(std::string_view message, FatalErrorRecoveryBlock recoveryBlock);
void tryRecoverFatalError(std::string_view message, std::optional<std::string_view> exceptionName,
                          FatalErrorRecoveryBlock recoveryBlock);

// As tryRecoverFatalError without the alert; when they return they return
// fatalVNErrorWithDeveloperDescription(message).
ErrorPtr tryHandleFatalError(std::string_view message);
ErrorPtr tryHandleFatalError(std::string_view message, std::string_view exceptionName);
ErrorPtr tryHandleFatalError(std::string_view message, FatalErrorRecoveryBlock recoveryBlock);
ErrorPtr tryHandleFatalError(std::string_view message,
                             std::optional<std::string_view> exceptionName,
                             FatalErrorRecoveryBlock recoveryBlock);

// Installs the crash logger as the std::terminate handler. When the process terminates because
// of an exception, it prints to standard output "CRASH: " + the exception's description (a
// vn::Exception's reason, a std::exception's what()) + "\n" + the stack part (of the frames
// recorded in a vn::Exception, else of the terminating thread); then asks the registered logger
// service to endLogging(), printing "Unexpected exception: " + description + "\n" + stack part
// if that throws; then calls the terminate handler that was current when it was installed
// (each installation remembers the then current one, replacing what an earlier installation
// remembered; installing while the crash logger is already current changes nothing, so it
// never chains to itself). A termination without an exception goes straight to that handler.
void installUncaughtExceptionsHandler();

}  // namespace vn::VNUtilities

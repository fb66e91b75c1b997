#include "vn/services/VNLogAlertMessageService.h"

#include <cstdio>

#include "vn/platform/ExecutionEnvironment.h"

namespace vn {
namespace {

// One locked block of standard output, so that lines printed by other threads do not cut in.
void printLines(const std::vector<std::string_view>& lines) {
    if (!VNUtilities::showDeveloperInfo() || lines.empty()) return;
    flockfile(stdout);
    for (const std::string_view line : lines) {
        std::fwrite(line.data(), 1, line.size(), stdout);
        std::fputc('\n', stdout);
    }
    std::fflush(stdout);
    funlockfile(stdout);
}

void callHandlers(const VNAlertHandler& completion, const VNAlertHandler& dismissedHandler) {
    if (completion) completion();
    if (dismissedHandler) dismissedHandler();
}

std::vector<std::string_view> presentTexts(std::optional<std::string_view> title,
                                           std::optional<std::string_view> message) {
    std::vector<std::string_view> lines;
    if (title) lines.push_back(*title);
    if (message) lines.push_back(*message);
    return lines;
}

}  // namespace

void VNLogAlertMessageService::showMessage(std::string_view message) {
    printLines({message});
}

void VNLogAlertMessageService::showMessages(const std::vector<std::string>& messages) {
    printLines(std::vector<std::string_view>(messages.begin(), messages.end()));
}

void VNLogAlertMessageService::showMessage(std::string_view message, VNAlertHandler completion,
                                           VNAlertHandler dismissedHandler) {
    showMessage(message);
    callHandlers(completion, dismissedHandler);
}

void VNLogAlertMessageService::showMessages(const std::vector<std::string>& messages,
                                            VNAlertHandler completion,
                                            VNAlertHandler dismissedHandler) {
    showMessages(messages);
    callHandlers(completion, dismissedHandler);
}

void VNLogAlertMessageService::showAlertWithTitle(std::optional<std::string_view> title,
                                                  std::optional<std::string_view> message) {
    printLines(presentTexts(title, message));
}

void VNLogAlertMessageService::showAlertWithTitle(std::optional<std::string_view> title,
                                                  std::optional<std::string_view> message,
                                                  VNAlertHandler completion,
                                                  VNAlertHandler dismissedHandler) {
    showAlertWithTitle(title, message);
    callHandlers(completion, dismissedHandler);
}

void VNLogAlertMessageService::showAlertForError(const ErrorPtr& error) {
    showAlertForError(error, nullptr, nullptr);
}

void VNLogAlertMessageService::showAlertForError(const ErrorPtr& error, VNAlertHandler completion,
                                                 VNAlertHandler dismissedHandler) {
    if (!error || error->isUserCancelledError()) return;
    const std::string title = error->localizedDescription();
    const std::optional<std::string> suggestion = error->localizedRecoverySuggestion();
    showAlertWithTitle(title,
                       suggestion ? std::optional<std::string_view>(*suggestion) : std::nullopt,
                       std::move(completion), std::move(dismissedHandler));
}

}  // namespace vn

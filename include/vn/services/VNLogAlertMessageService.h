// VNLogAlertMessageService: the alert service the library uses when the host registered none.
// It shows nothing on screen: in developer mode (VNUtilities::showDeveloperInfo) it prints the
// texts to standard output, one per line; otherwise it prints nothing. Handlers are called
// synchronously on the calling thread, after printing, whether or not anything was printed.
#pragma once

#include "vn/services/VNAlertMessageService.h"

namespace vn {

class VNLogAlertMessageService final : public VNAlertMessageService {
  public:
    // Prints message (as showMessages with one message).
    void showMessage(std::string_view message) override;
    // Prints each message on its own line, in order.
    void showMessages(const std::vector<std::string>& messages) override;
    // Prints as above, then calls completion, then dismissedHandler (each when not empty).
    void showMessage(std::string_view message, VNAlertHandler completion,
                     VNAlertHandler dismissedHandler) override;
    void showMessages(const std::vector<std::string>& messages, VNAlertHandler completion,
                      VNAlertHandler dismissedHandler) override;

    // Prints the title, then the message, each only when present.
    void showAlertWithTitle(std::optional<std::string_view> title,
                            std::optional<std::string_view> message) override;
    void showAlertWithTitle(std::optional<std::string_view> title,
                            std::optional<std::string_view> message, VNAlertHandler completion,
                            VNAlertHandler dismissedHandler) override;

    // Prints the error's localized description as title and its localized recovery suggestion,
    // if any, as message. Nothing at all (no handler either) for a null or user-cancelled error.
    void showAlertForError(const ErrorPtr& error) override;
    void showAlertForError(const ErrorPtr& error, VNAlertHandler completion,
                           VNAlertHandler dismissedHandler) override;
};

}  // namespace vn

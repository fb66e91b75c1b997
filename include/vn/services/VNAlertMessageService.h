// The host application's way of showing messages and alerts to the user, as the library
// uses it (for example to show a recoverable fatal error in developer mode). The host
// registers its implementation with VNFoundationServices::registerAlertMessageService; when
// it registers none, the library falls back to VNLogAlertMessageService.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vn/platform/Error.h"

namespace vn {

// A completion or dismissed handler: no arguments, no result. An empty function means "none".
using VNAlertHandler = std::function<void()>;

// Every member may be called from any thread; an implementation that needs the main thread to
// show something is responsible for getting there. Handlers are called at most once each.
class VNAlertMessageService {
  public:
    virtual ~VNAlertMessageService() = default;

    virtual void showMessage(std::string_view message) = 0;
    virtual void showMessages(const std::vector<std::string>& messages) = 0;
    // completion runs once the messages were shown, then dismissedHandler once they are gone.
    virtual void showMessage(std::string_view message, VNAlertHandler completion,
                             VNAlertHandler dismissedHandler) = 0;
    virtual void showMessages(const std::vector<std::string>& messages, VNAlertHandler completion,
                              VNAlertHandler dismissedHandler) = 0;

    // An alert with an optional title and an optional message.
    virtual void showAlertWithTitle(std::optional<std::string_view> title,
                                    std::optional<std::string_view> message) = 0;
    virtual void showAlertWithTitle(std::optional<std::string_view> title,
                                    std::optional<std::string_view> message,
                                    VNAlertHandler completion, VNAlertHandler dismissedHandler) = 0;

    // An alert describing error. A null error or a user-cancelled one shows nothing, and then
    // neither handler is called: callers must not wait for them in that case.
    virtual void showAlertForError(const ErrorPtr& error) = 0;
    virtual void showAlertForError(const ErrorPtr& error, VNAlertHandler completion,
                                   VNAlertHandler dismissedHandler) = 0;
};

}  // namespace vn

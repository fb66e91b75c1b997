// An alert service for tests: shows nothing, keeps the errors it was asked to show.
#pragma once

#include <vector>

#include "vn/services/VNAlertMessageService.h"

namespace vn::testing {

class RecordingAlertService final : public VNAlertMessageService {
  public:
    void showMessage(std::string_view) override {}
    void showMessages(const std::vector<std::string>&) override {}
    void showMessage(std::string_view, VNAlertHandler, VNAlertHandler) override {}
    void showMessages(const std::vector<std::string>&, VNAlertHandler, VNAlertHandler) override {}
    void showAlertWithTitle(std::optional<std::string_view>,
                            std::optional<std::string_view>) override {}
    void showAlertWithTitle(std::optional<std::string_view>, std::optional<std::string_view>,
                            VNAlertHandler, VNAlertHandler) override {}
    void showAlertForError(const ErrorPtr& error) override { errors.push_back(error); }
    void showAlertForError(const ErrorPtr& error, VNAlertHandler, VNAlertHandler) override {
        errors.push_back(error);
    }

    std::vector<ErrorPtr> errors;
};

}  // namespace vn::testing

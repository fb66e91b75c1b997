// Checking raised vn::Exception by name and reason in one call.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string_view>

#include "vn/platform/Exception.h"

namespace vn::testing {

// Runs action and checks that it raises vn::Exception with exactly this name and reason (a
// test failure otherwise). The exception caught, for further checks; absent when none was.
template <class Action>
std::optional<Exception> expectRaises(Action&& action, std::string_view name,
                                      std::string_view reason) {
    try {
        action();
    } catch (const Exception& exception) {
        EXPECT_EQ(exception.name(), name);
        EXPECT_EQ(exception.reason(), reason);
        return exception;
    }
    ADD_FAILURE() << "nothing raised; expected " << name << ": " << reason;
    return std::nullopt;
}

}  // namespace vn::testing

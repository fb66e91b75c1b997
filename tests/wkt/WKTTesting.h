// Helpers shared by the WKT tests: checking raised exceptions by name and reason, and making
// points briefly.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "vn/platform/Exception.h"
#include "vn/wkt/WKTPoint.h"

namespace vn::testing_wkt {

// Runs action and checks that it raises vn::Exception with exactly this name and reason.
template <class Action>
void expectRaises(Action&& action, const std::string& name, const std::string& reason) {
    try {
        action();
        ADD_FAILURE() << "nothing raised; expected " << name << ": " << reason;
    } catch (const Exception& exception) {
        EXPECT_EQ(exception.name(), name);
        EXPECT_EQ(exception.reason(), reason);
    }
}

inline WKTPointPtr point(double x, double y) {
    return std::make_shared<WKTPoint>(x, y);
}
inline WKTPointPtr point(double x, double y, double z) {
    return std::make_shared<WKTPoint>(x, y, z);
}

}  // namespace vn::testing_wkt

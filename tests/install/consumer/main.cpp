// A program outside the library's tree, built against the installed headers and library.
#include <cstdio>

#include "vn/VNFoundation.h"

int main() {
    const vn::Value value(vn::Value::Dictionary{{"amount", *vn::Decimal::parse("12.50")}});
    const vn::ErrorPtr error = vn::Error::make(vn::NSCocoaErrorDomain, 3072);
    std::printf("%s %s\n", value["amount"].description().c_str(),
                error->isUserCancelledError() ? "cancelled" : "?");
    return value["amount"].description() == "12.5" && error->isUserCancelledError() ? 0 : 1;
}

#include "vn/geometry/Screen.h"

#include <cmath>
#include <mutex>
#include <string>

#include "vn/platform/Exception.h"

namespace vn {
namespace {

struct MainScreenSlot {
    std::mutex mutex;
    std::optional<ScreenDescription> screen;
};

MainScreenSlot& mainScreenSlot() {
    static MainScreenSlot slot;
    return slot;
}

}  // namespace

void Screen::setMain(std::optional<ScreenDescription> screen) {
    if (screen && !(std::isfinite(screen->scale) && screen->scale > 0)) {
        throw Exception(std::string(NSInvalidArgumentException),
                        "Screen scale must be a positive finite number");
    }
    auto& slot = mainScreenSlot();
    const std::lock_guard lock(slot.mutex);
    slot.screen = screen;
}

std::optional<ScreenDescription> Screen::main() {
    auto& slot = mainScreenSlot();
    const std::lock_guard lock(slot.mutex);
    return slot.screen;
}

CGFloat VNMainScreenScale() {
    const auto screen = Screen::main();
    return screen ? screen->scale : 1.0;
}

CGSize VNMainScreenSize() {
    const auto screen = Screen::main();
    return screen ? screen->fixedCoordinateSpaceSize : CGSizeZero;
}

}  // namespace vn

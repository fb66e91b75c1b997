// The main screen as the host application describes it, and the two functions of the layout
// code that read it.
//
// There is no display server here: the host application tells the library about its main
// screen (scale factor and the size of the screen's portrait-fixed coordinate space) through
// vn::Screen::setMain. Until it does, or after it removes the description, the process is
// headless: the scale is 1 and the size is zero.
//
// Thread safety: every function may be called from any thread; a reader sees either the
// previous or the new description, never a mix of both.
#pragma once

#include <optional>

#include "vn/geometry/CGGeometry.h"

namespace vn {

struct ScreenDescription {
    // Points to pixels; must be a positive finite number.
    CGFloat scale = 1;
    // Size of the screen's fixed coordinate space (portrait, independent of rotation).
    CGSize fixedCoordinateSpaceSize;
};

class Screen {
  public:
    // Describes the main screen, or removes it (std::nullopt: headless). Raises
    // vn::Exception NSInvalidArgumentException when the scale is not a positive finite number.
    static void setMain(std::optional<ScreenDescription> screen);
    // The current description; std::nullopt when headless.
    static std::optional<ScreenDescription> main();
};

// The main screen's scale factor (points to pixels); 1 when headless.
CGFloat VNMainScreenScale();

// The size of the main screen's fixed coordinate space bounds; zero when headless.
CGSize VNMainScreenSize();

}  // namespace vn

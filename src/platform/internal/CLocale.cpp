#include "platform/internal/CLocale.h"

namespace vn::platform_internal {

locale_t cLocale() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
    return locale;
}

}  // namespace vn::platform_internal

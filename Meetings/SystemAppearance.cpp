#include "Meetings/SystemAppearance.h"

namespace Meetings::SystemAppearance {

bool isDark(Platform::Appearance const& appearance) {
    return appearance.colorScheme() == Platform::ColorScheme::dark;
}

} // namespace Meetings::SystemAppearance

#include "Meetings/MeetSystemDesignEnum.h"

#include "Meetings/SystemAppearance.h"

namespace Meetings::MeetSystemDesignEnum {
namespace {

constexpr std::string_view defaultColorHexLight = "#5CC2C6";
constexpr std::string_view defaultColorHexDark = "#4FA8AC";

} // namespace

std::string_view defaultColorHex(Platform::Appearance const& appearance) {
    return SystemAppearance::isDark(appearance) ? defaultColorHexDark : defaultColorHexLight;
}

} // namespace Meetings::MeetSystemDesignEnum

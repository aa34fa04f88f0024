#pragma once

#include "Foundation/RawValue.h"

#include <array>
#include <cstdint>

namespace Platform {

/// The sizes that a widget may be shown in.
enum class WidgetFamily : std::uint8_t { systemSmall, systemMedium, systemLarge, systemExtraLarge };

} // namespace Platform

template <>
inline constexpr auto Foundation::rawValues<Platform::WidgetFamily> =
    std::to_array<std::pair<Platform::WidgetFamily, std::string_view>>({
        {Platform::WidgetFamily::systemSmall, "small"},
        {Platform::WidgetFamily::systemMedium, "medium"},
        {Platform::WidgetFamily::systemLarge, "large"},
        {Platform::WidgetFamily::systemExtraLarge, "extraLarge"},
    });

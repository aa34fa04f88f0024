#pragma once

#include "Foundation/RawValue.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

namespace Meetings {

/// How a meet is announced: a spoken message, or one of two sounds.
enum class MeetAlarmModeEnum : std::uint8_t { voice, hero, funk };

/// Every mode, in declaration order.
inline constexpr std::array allMeetAlarmModes = {MeetAlarmModeEnum::voice, MeetAlarmModeEnum::hero,
                                                 MeetAlarmModeEnum::funk};

/// The identity that lists of modes use: the raw value.
std::string_view id(MeetAlarmModeEnum mode);

/// Key of the mode's name in this package's texts.
std::string_view titleKey(MeetAlarmModeEnum mode);

/// Name of the system's own alert sound that the mode copies; absent for `voice`.
std::optional<std::string_view> systemSoundSourceFileName(MeetAlarmModeEnum mode);

/// Name under which that copy is installed for notifications; absent for `voice`.
std::optional<std::string_view> installedSoundFileName(MeetAlarmModeEnum mode);

/// Name of the sound among the program's resources; absent for `voice`.
std::optional<std::string_view> bundledSoundFileName(MeetAlarmModeEnum mode);

} // namespace Meetings

template <>
inline constexpr auto Foundation::rawValues<Meetings::MeetAlarmModeEnum> =
    std::to_array<std::pair<Meetings::MeetAlarmModeEnum, std::string_view>>({
        {Meetings::MeetAlarmModeEnum::voice, "voice"},
        {Meetings::MeetAlarmModeEnum::hero, "hero"},
        {Meetings::MeetAlarmModeEnum::funk, "funk"},
    });

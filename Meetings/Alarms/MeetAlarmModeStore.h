#pragma once

#include "Meetings/Alarms/MeetAlarmModeEnum.h"
#include "Platform/Defaults/UserDefaults.h"

#include <system_error>

/// How the person wants meets announced, under the key "meetAlarmMode".
namespace Meetings::MeetAlarmModeStore {

/// `voice` when nothing is stored, or a text that is no mode: "Funk" is none.
MeetAlarmModeEnum load(Platform::UserDefaults const& defaults);

/// Yields why it could not be stored; the former mode then stands.
[[nodiscard]] std::error_code save(MeetAlarmModeEnum mode, Platform::UserDefaults& defaults);

} // namespace Meetings::MeetAlarmModeStore

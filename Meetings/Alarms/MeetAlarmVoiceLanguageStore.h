#pragma once

#include "Meetings/Alarms/MeetAlarmVoiceLanguageEnum.h"
#include "Platform/Defaults/UserDefaults.h"

#include <system_error>

/// The language of spoken announcements, under the key "meetAlarmVoiceLanguage".
namespace Meetings::MeetAlarmVoiceLanguageStore {

/// `spanish` when nothing is stored, or a text that is no language of ours.
MeetAlarmVoiceLanguageEnum load(Platform::UserDefaults const& defaults);

/// Yields why it could not be stored; the former language then stands.
[[nodiscard]] std::error_code save(MeetAlarmVoiceLanguageEnum language, Platform::UserDefaults& defaults);

} // namespace Meetings::MeetAlarmVoiceLanguageStore

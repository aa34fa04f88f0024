#include "Meetings/Alarms/MeetAlarmModeEnum.h"

namespace Meetings {

// Each answer names every mode, so that a new one does not compile until it is decided here. The text after
// the switch is never reached with a mode of this program.

std::string_view id(MeetAlarmModeEnum mode) {
    return Foundation::rawValue(mode);
}

std::string_view titleKey(MeetAlarmModeEnum mode) {
    switch (mode) {
    case MeetAlarmModeEnum::voice: return "meet-alarm-mode-voice";
    case MeetAlarmModeEnum::hero: return "meet-alarm-mode-hero";
    case MeetAlarmModeEnum::funk: return "meet-alarm-mode-funk";
    }
    return {};
}

std::optional<std::string_view> systemSoundSourceFileName(MeetAlarmModeEnum mode) {
    switch (mode) {
    case MeetAlarmModeEnum::voice: return std::nullopt;
    case MeetAlarmModeEnum::hero: return "Hero.aiff";
    case MeetAlarmModeEnum::funk: return "Funk.aiff";
    }
    return std::nullopt;
}

std::optional<std::string_view> installedSoundFileName(MeetAlarmModeEnum mode) {
    switch (mode) {
    case MeetAlarmModeEnum::voice: return std::nullopt;
    case MeetAlarmModeEnum::hero: return "quillora-alarm-sound-hero.aiff";
    case MeetAlarmModeEnum::funk: return "quillora-alarm-sound-funk.aiff";
    }
    return std::nullopt;
}

std::optional<std::string_view> bundledSoundFileName(MeetAlarmModeEnum mode) {
    switch (mode) {
    case MeetAlarmModeEnum::voice: return std::nullopt;
    case MeetAlarmModeEnum::hero: return "hero.wav";
    case MeetAlarmModeEnum::funk: return "funk.wav";
    }
    return std::nullopt;
}

} // namespace Meetings

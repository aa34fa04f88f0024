#include "Meetings/Alarms/MeetAlarmVoiceLanguageEnum.h"

namespace Meetings {

// Each answer names every language, so that a new one does not compile until it is decided here. The text
// after the switch is never reached with a language of this program.

std::string_view id(MeetAlarmVoiceLanguageEnum language) {
    return Foundation::rawValue(language);
}

std::string_view titleKey(MeetAlarmVoiceLanguageEnum language) {
    switch (language) {
    case MeetAlarmVoiceLanguageEnum::spanish: return "meet-alarm-voice-language-spanish";
    case MeetAlarmVoiceLanguageEnum::english: return "meet-alarm-voice-language-english";
    }
    return {};
}

std::string_view sayVoiceName(MeetAlarmVoiceLanguageEnum language) {
    switch (language) {
    case MeetAlarmVoiceLanguageEnum::spanish: return "Paulina";
    case MeetAlarmVoiceLanguageEnum::english: return "Samantha";
    }
    return {};
}

std::string_view speechLanguageCode(MeetAlarmVoiceLanguageEnum language) {
    switch (language) {
    case MeetAlarmVoiceLanguageEnum::spanish: return "es-CO";
    case MeetAlarmVoiceLanguageEnum::english: return "en-US";
    }
    return {};
}

std::string_view sampleMeetingName(MeetAlarmVoiceLanguageEnum language) {
    switch (language) {
    case MeetAlarmVoiceLanguageEnum::spanish: return "Sync con el equipo";
    case MeetAlarmVoiceLanguageEnum::english: return "Team sync";
    }
    return {};
}

std::string spokenText(MeetAlarmVoiceLanguageEnum language, std::string_view meetName) {
    // Both sentences are fixed, the Spanish "Tienes a" and the English "a" before a vowel too.
    switch (language) {
    case MeetAlarmVoiceLanguageEnum::spanish: return "Tienes a " + std::string(meetName) + ".";
    case MeetAlarmVoiceLanguageEnum::english: return "You have a " + std::string(meetName) + ".";
    }
    return {};
}

} // namespace Meetings

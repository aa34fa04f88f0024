#include "Applications/Companion/AlarmTexts.h"

#include "Applications/Companion/TextLookup.h"
#include "Foundation/Text.h"

namespace Companion::Texts {

std::string alarmModeSet(std::string_view title) {
    return text("alarm-mode-set", title);
}

std::string alarmVoiceSet(std::string_view title) {
    return text("alarm-voice-set", title);
}

std::string alarmTemplateSet(std::string_view sample) {
    return text("alarm-template-set", quoted(sample));
}

std::string alarmTemplateUnset(std::string_view sample) {
    return text("alarm-template-unset", quoted(sample));
}

std::string alarmTemplateNeedsPlaceholder() {
    return text("alarm-template-needs-placeholder");
}

std::string alarmTemplateNotSaved() {
    return text("alarm-template-not-saved");
}

std::string alarmTemplateUnreadable() {
    return text("alarm-template-unreadable");
}

std::string announcedMark() {
    return text("announced-mark");
}

std::string goneCalendar() {
    return text("gone-calendar");
}

std::string calendarAnnounced(std::string_view title) {
    return text("calendar-announced", quoted(title));
}

std::string calendarNoLongerAnnounced(std::string_view title) {
    return text("calendar-no-longer-announced", quoted(title));
}

std::string unknownAnnouncedCalendar(std::string_view identifier) {
    return text("unknown-announced-calendar", quoted(identifier));
}

std::string announcementSpoken(std::string_view sentence) {
    return text("announcement-spoken", Foundation::Text::neutralized(sentence));
}

std::string announcementPlayed(std::string_view title) {
    return text("announcement-played", title);
}

std::string announcementNotHeard(Composition::AlarmAnnouncer::Failure failure) {
    using enum Composition::AlarmAnnouncer::Failure;
    switch (failure) {
    case noSpeechProgram: return text("announcement-no-speech-program");
    case speechRefused: return text("announcement-speech-refused");
    case noPlayer: return text("announcement-no-player");
    case playerRefused: return text("announcement-player-refused");
    case noSound: return text("announcement-no-sound");
    }
    return {};
}

} // namespace Companion::Texts

#pragma once

#include "Applications/Composition/AlarmAnnouncer.h"

#include <string>
#include <string_view>

/// What the program says of alarms.
namespace Companion::Texts {

std::string alarmModeSet(std::string_view title);
std::string alarmVoiceSet(std::string_view title);
std::string alarmTemplateSet(std::string_view sample);
std::string alarmTemplateUnset(std::string_view sample);
std::string alarmTemplateNeedsPlaceholder();
std::string alarmTemplateNotSaved();
std::string alarmTemplateUnreadable();
std::string announcedMark();
std::string goneCalendar();
std::string calendarAnnounced(std::string_view title);
std::string calendarNoLongerAnnounced(std::string_view title);
std::string unknownAnnouncedCalendar(std::string_view identifier);
std::string announcementSpoken(std::string_view sentence);
std::string announcementPlayed(std::string_view title);
std::string announcementNotHeard(Composition::AlarmAnnouncer::Failure failure);

} // namespace Companion::Texts

#include "Applications/Companion/Doctor/Examinations.h"

#include "Applications/Companion/DoctorTexts.h"
#include "Applications/Composition/AlarmServiceLock.h"
#include "Meetings/Alarms/AlarmEnabledCalendarsStore.h"
#include "Platform/UserNotifications/SessionBusUserNotificationCenter.h"
#include "Platform/WidgetHost/BusNameState.h"

namespace Companion::Doctor {

namespace {

// Who chose no calendar misses no announcement.
void examineService(bool isRunning, std::size_t announced, Findings& findings) {
    if (announced == 0) {
        findings.note("alarms", Texts::nothingIsAnnounced(), Texts::addAnnouncedCalendarCommand());
    } else if (isRunning) {
        findings.works("alarms", Texts::alarmServiceRuns(announced));
    } else {
        findings.broken("alarms", Texts::noAlarmServiceRuns(announced), Texts::startAlarmsCommand());
    }
}

// Without a server an alarm is still heard. A bus that does not answer has a finding of its own.
void examineServer(Foundation::Environment const& environment, std::size_t announced, Findings& findings) {
    auto const* const name = Platform::SessionBusUserNotificationCenter::serverName;
    switch (Platform::busNameState(environment, name)) {
    case Platform::BusNameState::noBus:
    case Platform::BusNameState::busUnreachable:
        findings.note("notifications", Texts::noBusForNotifications());
        return;
    case Platform::BusNameState::absent:
        if (announced == 0)
            findings.note("notifications", Texts::noNotificationServer());
        else
            findings.broken("notifications", Texts::noNotificationServer(), Texts::notificationsCommand());
        return;
    case Platform::BusNameState::startable:
        findings.works("notifications", Texts::notificationServerStarts());
        return;
    case Platform::BusNameState::owned:
        findings.works("notifications", Texts::notificationServerRuns());
        return;
    }
}

} // namespace

void examineAlarms(Composition::LiveServices& services, Findings& findings) {
    auto const announced = Meetings::AlarmEnabledCalendarsStore::load(*services.userDefaults()).size();
    examineService(Composition::AlarmServiceLock::isHeld(*services.calendarPlaces()), announced, findings);
    examineServer(services.environment(), announced, findings);
}

} // namespace Companion::Doctor

#include "Applications/Companion/CalendarAccounts.h"

#include "Applications/Companion/CalendarAccess.h"
#include "Applications/Companion/CommandError.h"
#include "Applications/Companion/Texts.h"
#include "Meetings/EventKit/EventKitMeetRepositoryError.h"
#include "Meetings/EventKit/EventKitMeetRepositoryImpl.h"
#include "Meetings/EventKit/LiveEventKitStore.h"
#include "Platform/Clock/RegionSettings.h"

namespace Companion {

std::vector<Meetings::EventKitAccountCalendarsEntity> availableAccounts(Composition::LiveServices& services) {
    auto const store = std::make_shared<Meetings::LiveEventKitStore>(services.eventStore());
    Meetings::EventKitMeetRepositoryImpl repository(
        store, {.calendar = services.region()->currentCalendar(), .defaultCalendarIdentifier = std::nullopt},
        {.clock = services.clock(),
         .texts = services.meetingsTexts(),
         .appearance = services.appearance(),
         .logSink = services.logSink()});
    try {
        return Foundation::runTask(repository.listAvailableCalendars());
    } catch (Meetings::EventKitMeetRepositoryError const&) {
        throw CommandError::failed(whyNoAccess(services, Texts::accessIsMissing()));
    }
}

std::optional<std::string>
calendarTitle(std::vector<Meetings::EventKitAccountCalendarsEntity> const& accounts,
              std::string_view identifier) {
    for (auto const& account : accounts)
        for (auto const& calendar : account.eacCalendars)
            if (calendar.eciId == identifier) return calendar.eciTitle;
    return std::nullopt;
}

} // namespace Companion

#include "WidgetExtension/ScheduleMeetRepository.h"

#include "Meetings/EventKit/EventKitMeetRepositoryImpl.h"
#include "Meetings/HiddenCalendarsStore.h"
#include "WidgetExtension/ScheduleWidgetDayOffsetStore.h"

#include <optional>
#include <utility>

namespace WidgetExtension {

std::shared_ptr<Meetings::MeetRepository> scheduleMeetRepository(ScheduleWidgetServices const& services,
                                                                 Foundation::Calendar const& calendar) {
    Meetings::EventKitMeetRepositorySettings settings = {
        .calendar = calendar,
        // As far as the buttons reach.
        .daysBehind = ScheduleWidgetDayOffsetStore::maxOffset,
        .daysAhead = ScheduleWidgetDayOffsetStore::maxOffset,
        .hiddenCalendarIdentifiers = Meetings::HiddenCalendarsStore::load(*services.files),
        .defaultCalendarIdentifier = std::nullopt,
        .loggerCategory = "EventKitMeetRepositoryImpl",
    };
    Meetings::EventKitMeetRepositorySurroundings surroundings = {
        .clock = services.clock,
        .texts = services.meetingsTexts,
        .appearance = services.appearance,
        .logSink = services.logSink,
    };
    return std::make_shared<Meetings::EventKitMeetRepositoryImpl>(services.eventStore(), std::move(settings),
                                                                  std::move(surroundings));
}

} // namespace WidgetExtension

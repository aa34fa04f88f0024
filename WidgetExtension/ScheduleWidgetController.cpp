#include "WidgetExtension/ScheduleWidgetController.h"

#include "CalendarProviders/EnabledCalendarAccountsStore.h"
#include "Meetings/EventKit/EventKitMeetRepositoryError.h"
#include "Meetings/EventKit/EventKitMeetRepositoryImpl.h"
#include "Meetings/HiddenCalendarsStore.h"
#include "Meetings/MeetingsApplication.h"
#include "WidgetExtension/ScheduleWidgetDayOffsetStore.h"

#include <memory>
#include <optional>
#include <utility>

namespace WidgetExtension {
namespace {

using DayMeetings = ScheduleWidgetController::DayMeetings;

std::shared_ptr<Meetings::MeetRepository> makeRepository(ScheduleWidgetServices const& services,
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

Foundation::Task<DayMeetings> loadDay(ScheduleWidgetServices services, Foundation::Date date) {
    auto const accounts = CalendarProviders::EnabledCalendarAccountsStore::load(*services.files);
    if (!accounts.contains(CalendarProviders::AccountProviderEnum::eventKit)) {
        co_return DayMeetings{.meetings = {}, .hasAccessError = false};
    }
    bool hasAccessError = false;
    try {
        auto const calendar = services.region->currentCalendar();
        Meetings::MeetingsApplication const application(makeRepository(services, calendar), calendar);
        std::vector<Meetings::MeetEntity> meetings = co_await application.fetchDailyMeets(date);
        DayMeetings day = {.meetings = std::move(meetings), .hasAccessError = false};
        co_return day;
    } catch (Meetings::EventKitMeetRepositoryError const& error) {
        hasAccessError = error.code() == Meetings::EventKitMeetRepositoryError::Case::accessDenied;
    } catch (...) {
        // Every other failure is an empty day, on purpose without a report.
    }
    co_return DayMeetings{.meetings = {}, .hasAccessError = hasAccessError};
}

} // namespace

ScheduleWidgetController::ScheduleWidgetController(ScheduleWidgetServices services)
    : services(std::move(services)) {}

Foundation::Task<DayMeetings> ScheduleWidgetController::getTodaysMeetings(Foundation::Date date) const {
    return loadDay(services, date);
}

} // namespace WidgetExtension

#include "WidgetExtension/ScheduleWidgetController.h"

#include "CalendarProviders/EnabledCalendarAccountsStore.h"
#include "Meetings/EventKit/EventKitMeetRepositoryError.h"
#include "Meetings/MeetingsApplication.h"
#include "WidgetExtension/ScheduleMeetRepository.h"

#include <utility>

namespace WidgetExtension {
namespace {

using DayMeetings = ScheduleWidgetController::DayMeetings;

Foundation::Task<DayMeetings> loadDay(ScheduleWidgetServices services, Foundation::Date date) {
    auto const accounts = CalendarProviders::EnabledCalendarAccountsStore::load(*services.files);
    if (!accounts.contains(CalendarProviders::AccountProviderEnum::eventKit)) {
        co_return DayMeetings{.meetings = {}, .hasAccessError = false};
    }
    bool hasAccessError = false;
    try {
        auto const calendar = services.region->currentCalendar();
        Meetings::MeetingsApplication const application(scheduleMeetRepository(services, calendar), calendar);
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

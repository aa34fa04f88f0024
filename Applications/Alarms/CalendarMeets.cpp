#include "Applications/Alarms/CalendarMeets.h"

#include "Applications/Alarms/Texts.h"
#include "CalendarProviders/EnabledCalendarAccountsStore.h"
#include "Meetings/EventKit/EventKitMeetRepositoryImpl.h"
#include "Meetings/MeetingsApplication.h"

#include <chrono>
#include <exception>
#include <iterator>
#include <utility>

namespace Alarms {

using Meetings::MeetEntity;
using WidgetExtension::ScheduleWidgetServices;

namespace {

std::shared_ptr<Meetings::MeetRepository> repositoryOf(ScheduleWidgetServices const& services,
                                                       Foundation::Calendar const& calendar) {
    return std::make_shared<Meetings::EventKitMeetRepositoryImpl>(
        services.eventStore(),
        Meetings::EventKitMeetRepositorySettings{
            .calendar = calendar,
            // The outermost days come in part, so one more than the horizon reaches.
            .daysBehind = 2,
            .daysAhead = 2,
            .defaultCalendarIdentifier = std::nullopt,
        },
        Meetings::EventKitMeetRepositorySurroundings{
            .clock = services.clock,
            .texts = services.meetingsTexts,
            .appearance = services.appearance,
            .logSink = services.logSink,
        });
}

Foundation::Task<std::vector<MeetEntity>> meetsAroundNow(ScheduleWidgetServices services) {
    std::vector<MeetEntity> meets;
    auto const accounts = CalendarProviders::EnabledCalendarAccountsStore::load(*services.files);
    if (!accounts.contains(CalendarProviders::AccountProviderEnum::eventKit)) co_return meets;

    auto const calendar = services.region->currentCalendar();
    auto const now = services.clock->now();
    Meetings::MeetingsApplication const application(repositoryOf(services, calendar), calendar);
    auto const last = calendar.day(now.addingTimeInterval(AlarmService::horizon));
    for (auto day = calendar.day(now.addingTimeInterval(-AlarmService::horizon)); day <= last;
         day += std::chrono::days(1)) {
        auto const start = calendar.startOfDay(day);
        std::vector<MeetEntity> daily = co_await application.fetchDailyMeets(start);
        std::ranges::move(daily, std::back_inserter(meets));
    }
    co_return meets;
}

Foundation::Task<void> answer(ScheduleWidgetServices services, MeetsAnswer told) {
    std::expected<std::vector<MeetEntity>, std::string> meets;
    try {
        std::vector<MeetEntity> read = co_await meetsAroundNow(services);
        meets = std::move(read);
    } catch (std::exception const& error) {
        meets = std::unexpected(error.what());
    } catch (...) {
        meets = std::unexpected(Texts::calendarsNotRead());
    }
    told(std::move(meets));
}

} // namespace

std::function<void(MeetsAnswer)> askingCalendars(ScheduleWidgetServices services) {
    return [services = std::move(services)](MeetsAnswer told) {
        services.executor.start(answer(services, std::move(told)));
    };
}

} // namespace Alarms

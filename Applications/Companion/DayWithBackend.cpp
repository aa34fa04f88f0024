#include "Applications/Companion/DayWithBackend.h"

#include "Applications/Companion/BackendTexts.h"
#include "Applications/Companion/CommandError.h"
#include "Applications/Companion/Texts.h"
#include "CalendarProviders/EnabledCalendarAccountsStore.h"
#include "Meetings/CompositeMeetRepositoryImpl.h"
#include "Meetings/MeetingsApplication.h"
#include "Platform/Clock/FixedClock.h"
#include "WidgetExtension/ScheduleMeetRepository.h"
#include "WidgetExtension/ScheduleWidgetDayOffsetStore.h"

#include <cstdlib>
#include <utility>

namespace Companion {

using Meetings::MeetEntity;
using WidgetExtension::ScheduleWidgetServices;

namespace {

// A source of the composite, which swallows failures: this one remembers why it failed.
class NotedMeetRepository final : public Meetings::MeetRepository {
public:
    explicit NotedMeetRepository(std::shared_ptr<Meetings::MeetRepository> source)
        : source(std::move(source)) {}

    Foundation::Task<std::vector<MeetEntity>> fetchAllMeets() override {
        try {
            std::vector<MeetEntity> meets = co_await source->fetchAllMeets();
            co_return meets;
        } catch (...) {
            failure = std::current_exception();
            throw;
        }
    }
    Foundation::Task<MeetEntity> create(MeetEntity meet) override { return source->create(std::move(meet)); }
    Foundation::Task<MeetEntity> update(MeetEntity meet) override { return source->update(std::move(meet)); }
    Foundation::Task<void> deleteMeet(MeetEntity meet) override {
        return source->deleteMeet(std::move(meet));
    }

    std::exception_ptr failure;

private:
    std::shared_ptr<Meetings::MeetRepository> source;
};

bool isSwitchedOn(ScheduleWidgetServices const& services) {
    return CalendarProviders::EnabledCalendarAccountsStore::load(*services.files)
        .contains(CalendarProviders::AccountProviderEnum::eventKit);
}

// The calendar store looks only some days around the clock's moment.
ScheduleWidgetServices lookingAt(ShownDay const& day, ScheduleWidgetServices services) {
    bool const isInReach =
        std::llabs(day.entry.dayOffset) <= WidgetExtension::ScheduleWidgetDayOffsetStore::maxOffset;
    if (!isInReach) services.clock = std::make_shared<Platform::FixedClock>(day.entry.date);
    return services;
}

void reportFailure(Invocation const& invocation, std::string const& whatIsMissing,
                   std::exception_ptr const& failure) {
    invocation.console.report(whatIsMissing);
    auto const message = messageOf(failure);
    if (!message.empty()) invocation.console.reportExactly(message);
}

} // namespace

ShownDay withBackend(Invocation const& invocation, Composition::LiveServices& live,
                     ScheduleWidgetServices const& services, ShownDay day, OutputReader reader) {
    std::optional<BackendRun> run;
    try {
        run.emplace(invocation, live, reader);
    } catch (CommandError const& error) {
        // Without a backend there are still the calendars.
        invocation.console.report(error.what());
        return day;
    }
    auto const calendar = services.region->currentCalendar();
    std::shared_ptr<NotedMeetRepository> calendars;
    if (isSwitchedOn(services)) {
        calendars = std::make_shared<NotedMeetRepository>(
            WidgetExtension::scheduleMeetRepository(lookingAt(day, services), calendar));
    }
    auto const backend = std::make_shared<NotedMeetRepository>(run->meets());
    std::vector<std::shared_ptr<Meetings::MeetRepository>> sources;
    if (calendars) sources.push_back(calendars);
    sources.push_back(backend);

    Meetings::MeetingsApplication const application(
        std::make_shared<Meetings::CompositeMeetRepositoryImpl>(std::move(sources)), calendar);
    auto result = run->await(application.fetchDailyMeets(day.entry.date));
    // The composite never fails, not when it is cancelled either.
    if (result.end.signal) throwInterrupted(*result.end.signal, Texts::interruptedReading());
    if (result.end.error) std::rethrow_exception(result.end.error);

    day.entry.meetings = *std::move(result.value);
    day.entry.hasAccessError = false;
    if (calendars && calendars->failure)
        reportFailure(invocation, Texts::calendarsAreMissing(), calendars->failure);
    if (backend->failure) {
        auto const reason = run->unsaidReason(messageOf(backend->failure));
        reportFailure(invocation,
                      reason ? Texts::withReason(Texts::backendIsMissing(), *reason)
                             : Texts::backendIsMissing(),
                      backend->failure);
    }
    return day;
}

} // namespace Companion

#include "Meetings/EventKit/EventKitMeetRepositoryImpl.h"

#include "Meetings/EventKit/EventKitMeetMapper.h"
#include "Meetings/EventKit/EventKitMeetRepositoryError.h"
#include "Meetings/MeetConfigEnum.h"

#include <algorithm>
#include <array>
#include <exception>
#include <limits>
#include <memory>
#include <utility>

namespace Meetings {
namespace {

std::string description(Platform::EKAuthorizationStatus status) {
    switch (status) {
    case Platform::EKAuthorizationStatus::notDetermined: return "notDetermined";
    case Platform::EKAuthorizationStatus::restricted: return "restricted";
    case Platform::EKAuthorizationStatus::denied: return "denied";
    case Platform::EKAuthorizationStatus::fullAccess: return "fullAccess";
    case Platform::EKAuthorizationStatus::writeOnly: return "writeOnly";
    }
    return "unknown(" + std::to_string(static_cast<std::int64_t>(status)) + ")";
}

// Absent when the calendar cannot form it; the least number of days has no opposite.
std::optional<Foundation::Date> daysBefore(Foundation::Date date, std::int64_t days,
                                           Foundation::Calendar const& calendar) {
    if (days == std::numeric_limits<std::int64_t>::min()) return std::nullopt;
    return calendar.dateByAddingDays(-days, date);
}

// Asks the desktop at most once, and only when a calendar has no colour: a desktop that answers slowly must
// not be waited for once an event.
class AppearanceOfOneFetch final : public Platform::Appearance {
public:
    explicit AppearanceOfOneFetch(Platform::Appearance const& desktop) : desktop(desktop) {}

    [[nodiscard]] std::optional<Platform::ColorScheme> colorScheme() const override {
        if (!scheme) scheme = desktop.colorScheme();
        return *scheme;
    }
    [[nodiscard]] std::optional<std::array<double, 3>> accentColor() const override {
        return desktop.accentColor();
    }
    [[nodiscard]] std::optional<std::string> interfaceFont() const override {
        return desktop.interfaceFont();
    }

private:
    Platform::Appearance const& desktop;
    mutable std::optional<std::optional<Platform::ColorScheme>> scheme;
};

// Runs one change of the store; whatever it throws becomes `saveFailed` with its text.
template <typename Change>
void reportingRefusal(Change&& change) {
    try {
        std::forward<Change>(change)();
    } catch (std::exception const& error) {
        throw EventKitMeetRepositoryError::saveFailed(error.what());
    }
}

} // namespace

EventKitMeetRepositoryImpl::EventKitMeetRepositoryImpl(std::shared_ptr<EventKitStoring> eventStore,
                                                       EventKitMeetRepositorySettings settings,
                                                       EventKitMeetRepositorySurroundings surroundings)
    : eventStore(std::move(eventStore)),
      settings(std::move(settings)),
      surroundings(std::move(surroundings)),
      logger(this->surroundings.logSink, std::string(MeetConfigEnum::loggerSubsystem),
             this->settings.loggerCategory) {}

Foundation::Task<std::vector<MeetEntity>> EventKitMeetRepositoryImpl::fetchAllMeets() {
    co_await requestAccessIfNeeded();

    auto calendars = eventStore->calendarsForEntityType(Platform::EKEntityType::event);
    std::erase_if(calendars, [this](Platform::EKCalendar const& calendar) {
        return settings.hiddenCalendarIdentifiers.contains(calendar.calendarIdentifier);
    });

    // From now to the second, on purpose not from the start of a day: the outermost days come in part.
    auto const now = surroundings.clock->now();
    auto const start = daysBefore(now, settings.daysBehind, settings.calendar).value_or(now);
    auto const end = settings.calendar.dateByAddingDays(settings.daysAhead, now).value_or(now);
    auto const predicate = eventStore->predicateForEvents(start, end, calendars);

    std::vector<MeetEntity> meets;
    AppearanceOfOneFetch const appearance(*surroundings.appearance);
    for (auto const& event : eventStore->eventsMatching(predicate))
        meets.push_back(toMeet(event, appearance));
    co_return meets;
}

Foundation::Task<MeetEntity> EventKitMeetRepositoryImpl::create(MeetEntity meet) {
    co_await requestAccessIfNeeded();

    auto event = eventStore->makeEvent();
    write(meet, event);
    event.calendar = std::make_shared<Platform::EKCalendar const>(calendarForNewMeets());
    EventKitMeetMapper::applyRecurrence(meet.metRecurrenceFrequency, meet.metRecurringWeekdays, event,
                                        settings.calendar);
    save(event);
    co_return toMeet(event, *surroundings.appearance);
}

Foundation::Task<MeetEntity> EventKitMeetRepositoryImpl::update(MeetEntity meet) {
    co_await requestAccessIfNeeded();

    // Near the new start, on purpose: a meet moved by more than a day is not found.
    auto found = occurrenceWithIdentifier(meet.metOriginalIdentifier, meet.metDate);
    if (!found) throw EventKitMeetRepositoryError::eventNotFound();
    auto event = *std::move(found);
    write(meet, event);
    event.recurrenceRules.clear();
    EventKitMeetMapper::applyRecurrence(meet.metRecurrenceFrequency, meet.metRecurringWeekdays, event,
                                        settings.calendar);
    save(event);
    co_return toMeet(event, *surroundings.appearance);
}

Foundation::Task<void> EventKitMeetRepositoryImpl::deleteMeet(MeetEntity meet) {
    co_await requestAccessIfNeeded();

    auto const found = occurrenceWithIdentifier(meet.metOriginalIdentifier, meet.metDate);
    if (!found) throw EventKitMeetRepositoryError::eventNotFound();
    if (found->recurrenceRules.empty()) {
        remove(*found, Platform::EKSpan::thisEvent);
        co_return;
    }
    std::optional<Platform::EKEvent> series;
    if (found->eventIdentifier) series = eventStore->eventWithIdentifier(*found->eventIdentifier);
    remove(series.value_or(*found), Platform::EKSpan::futureEvents);
}

Foundation::Task<std::vector<EventKitAccountCalendarsEntity>>
EventKitMeetRepositoryImpl::listAvailableCalendars() {
    co_await requestAccessIfNeeded();
    AppearanceOfOneFetch const appearance(*surroundings.appearance);
    co_return EventKitMeetMapper::buildAccountCalendars(eventStore->sources(), appearance);
}

Foundation::Task<void> EventKitMeetRepositoryImpl::requestAccessIfNeeded() {
    auto const status = eventStore->authorizationStatus();
    logger.info("Authorization status: " + description(status));
    if (status == Platform::EKAuthorizationStatus::fullAccess) co_return;

    if (status == Platform::EKAuthorizationStatus::notDetermined) {
        bool const isGranted = co_await askForAccess();
        logger.info(isGranted ? "Access request result: true" : "Access request result: false");
        if (!isGranted) throw EventKitMeetRepositoryError::accessDenied();
        co_return;
    }

    // Write-only access counts as denied, on purpose and without asking: a meet must be read to be shown.
    logger.error("Access denied, status: " + description(status));
    throw EventKitMeetRepositoryError::accessDenied();
}

// A request that fails is one that was not granted.
Foundation::Task<bool> EventKitMeetRepositoryImpl::askForAccess() {
    try {
        bool const isGranted = co_await eventStore->requestFullAccessToEvents();
        co_return isGranted;
    } catch (...) {
    }
    co_return false;
}

Platform::EKCalendar EventKitMeetRepositoryImpl::calendarForNewMeets() const {
    std::optional<Platform::EKCalendar> calendar;
    if (settings.defaultCalendarIdentifier) {
        calendar = eventStore->calendarWithIdentifier(*settings.defaultCalendarIdentifier);
    }
    if (!calendar) calendar = eventStore->defaultCalendarForNewEvents();
    if (!calendar) {
        throw EventKitMeetRepositoryError::saveFailed(
            surroundings.texts->text("eventkit-meet-no-default-calendar"));
    }
    return *std::move(calendar);
}

std::optional<Platform::EKEvent>
EventKitMeetRepositoryImpl::occurrenceWithIdentifier(std::string_view identifier,
                                                     Foundation::Date near) const {
    auto const start = settings.calendar.dateByAddingDays(-1, near);
    auto const end = settings.calendar.dateByAddingDays(1, near);
    if (!start || !end) return std::nullopt;

    auto events = eventStore->eventsMatching(eventStore->predicateForEvents(*start, *end, std::nullopt));
    std::erase_if(events, [&](Platform::EKEvent const& event) {
        return EventKitMeetMapper::identifier(event) != identifier;
    });
    auto const exact = std::ranges::find_if(events, [&](Platform::EKEvent const& event) {
        return event.startDate && settings.calendar.isDateInSameMinute(*event.startDate, near);
    });
    if (exact != events.end()) return std::move(*exact);
    if (!events.empty()) return std::move(events.front());
    return std::nullopt;
}

void EventKitMeetRepositoryImpl::write(MeetEntity const& meet, Platform::EKEvent& event) const {
    event.title = meet.metName;
    event.startDate = meet.metDate;
    event.endDate = meet.metDate.addingTimeInterval(meet.metDuration);
    // No notes are written as empty notes, on purpose: the event then says that they were emptied.
    event.notes = meet.metDescription;
}

void EventKitMeetRepositoryImpl::save(Platform::EKEvent& event) const {
    reportingRefusal([&] { eventStore->save(event, Platform::EKSpan::thisEvent); });
}

void EventKitMeetRepositoryImpl::remove(Platform::EKEvent const& event, Platform::EKSpan span) const {
    reportingRefusal([&] { eventStore->remove(event, span); });
}

MeetEntity EventKitMeetRepositoryImpl::toMeet(Platform::EKEvent const& event,
                                              Platform::Appearance const& appearance) const {
    auto info = EventKitMeetMapper::recurrenceInfo(event);
    return EventKitMeetMapper::toMeetEntity(event, info.frequency, std::move(info.weekdays),
                                            *surroundings.texts, appearance);
}

} // namespace Meetings

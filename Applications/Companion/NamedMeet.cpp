#include "Applications/Companion/NamedMeet.h"

#include "Applications/Companion/CalendarAccess.h"
#include "Applications/Companion/CommandError.h"
#include "Applications/Companion/MeetIdentifier.h"
#include "Applications/Companion/MeetTexts.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "CalendarProviders/EnabledCalendarAccountsStore.h"
#include "Foundation/TaskLoop.h"
#include "Meetings/EventKit/EventKitMeetMapper.h"
#include "Meetings/EventKit/EventKitMeetRepositoryError.h"
#include "Platform/Clock/RegionSettings.h"
#include "WidgetExtension/ScheduleWidgetServices.h"

#include <algorithm>

namespace Companion {

using Meetings::MeetEntity;

namespace {

constexpr std::size_t fewestDigits = 8;

std::size_t sharedLength(std::string_view left, std::string_view right) {
    auto const [end, unused] = std::ranges::mismatch(left, right);
    return static_cast<std::size_t>(end - left.begin());
}

} // namespace

MeetsOfDay meetsOfDay(Composition::LiveServices& services, DayChoice const& choice) {
    auto const accounts = CalendarProviders::EnabledCalendarAccountsStore::load(*services.files());
    if (!accounts.contains(CalendarProviders::AccountProviderEnum::eventKit))
        throw CommandError::failed(whyNotSwitchedOn(services));
    Foundation::TaskLoop loop;
    auto const widgetServices = services.scheduleWidgetServices(loop.executor());
    auto day = completeDay(widgetServices, loop, offsetOf(choice, widgetServices));
    if (day.entry.hasAccessError) throw CommandError::failed(whyNoAccess(services, Texts::accessIsMissing()));
    return {.date = day.entry.date, .meetings = std::move(day.entry.meetings)};
}

std::vector<std::string> identifierBeginnings(std::vector<MeetEntity> const& meetings) {
    std::vector<std::string> beginnings;
    for (auto const& meet : meetings) {
        auto const whole = meet.metId.uuidString();
        std::size_t length = fewestDigits;
        for (auto const& other : meetings) {
            auto const text = other.metId.uuidString();
            if (text != whole) length = std::max(length, sharedLength(whole, text) + 1);
        }
        beginnings.push_back(whole.substr(0, length));
    }
    return beginnings;
}

MeetEntity meetCalled(std::string_view beginning, MeetsOfDay const& day, Invocation const& invocation,
                      MeetWords const& words) {
    auto const digits = identifierDigits(beginning);
    if (!digits) throw CommandError::wrongUse(Texts::notAnIdentifier(beginning));
    std::vector<MeetEntity> candidates;
    std::ranges::copy_if(day.meetings, std::back_inserter(candidates),
                         [&](MeetEntity const& meet) { return isCalled(meet, *digits); });
    if (candidates.empty()) {
        throw CommandError::refused(
            Texts::noSuchMeet(beginning, words.dayInSentence(day.date)),
            Texts::told(Meetings::EventKitMeetRepositoryError::eventNotFound().what()));
    }
    bool const isOne = std::ranges::all_of(
        candidates, [&](MeetEntity const& meet) { return meet.metId == candidates.front().metId; });
    if (!isOne) {
        invocation.console.tell(meetList(candidates, words));
        throw CommandError::wrongUse(
            Texts::severalMeets(beginning, candidates.size(), words.dayInSentence(day.date)));
    }
    return candidates.front();
}

std::optional<Platform::EKEvent> eventBehind(MeetEntity const& meet, Meetings::EventKitStoring& store,
                                             Foundation::Calendar const& calendar) {
    auto const start = calendar.dateByAddingDays(-1, meet.metDate);
    auto const end = calendar.dateByAddingDays(1, meet.metDate);
    if (!start || !end) return std::nullopt;
    for (auto& event : store.eventsMatching(store.predicateForEvents(*start, *end, std::nullopt)))
        if (Meetings::EventKitMeetMapper::stableId(event) == meet.metId) return std::move(event);
    return std::nullopt;
}

MeetWords meetWords(Composition::LiveServices& services) {
    return {services.region()->currentCalendar(), services.region()->currentLocale()};
}

std::string meetList(std::vector<MeetEntity> const& meetings, MeetWords const& words) {
    auto const beginnings = identifierBeginnings(meetings);
    std::vector<std::vector<std::string>> rows;
    for (std::size_t index = 0; index < meetings.size(); ++index) {
        auto const& meet = meetings[index];
        rows.push_back({beginnings[index], words.time(meet), Texts::shortened(meet.metName),
                        Texts::shortened(meet.metCalendarName)});
    }
    return alignedColumns(rows);
}

} // namespace Companion

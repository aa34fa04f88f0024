#include "Applications/Companion/DayExplanation.h"

#include "Applications/Companion/AskedOnceAppearance.h"
#include "CalendarProviders/EnabledCalendarAccountsStore.h"
#include "Meetings/EventKit/EventKitMeetMapper.h"
#include "Meetings/EventKit/EventKitStoring.h"
#include "Meetings/HiddenCalendarsStore.h"
#include "Platform/Clock/Clock.h"
#include "Platform/Clock/RegionSettings.h"
#include "Platform/EventStore/Folder/CalendarStoreConfiguration.h"
#include "Platform/EventStore/Folder/OmittedEvents.h"
#include "WidgetExtension/QuilloraWidgetBundle.h"
#include "WidgetExtension/ScheduleWidgetDayOffsetStore.h"

#include <algorithm>
#include <memory>
#include <set>
#include <utility>

namespace Companion {

namespace DayOffsetStore = WidgetExtension::ScheduleWidgetDayOffsetStore;
using Meetings::MeetEntity;
using WidgetExtension::ScheduleWidgetServices;
using WidgetExtension::ScheduleWidgetView;

namespace {

struct Interval {
    Foundation::Date start;
    Foundation::Date end;
};

Interval dayAround(Foundation::Date date, Foundation::Calendar const& calendar) {
    auto const day = calendar.day(date);
    return {.start = calendar.startOfDay(day), .end = calendar.startOfDay(day + std::chrono::days(1))};
}

// The days that the buttons lead to, each whole: the widget shows less of the outermost ones.
std::optional<Interval> daysOfButtons(Foundation::Date now, Foundation::Calendar const& calendar) {
    auto const first = calendar.dateByAddingDays(-DayOffsetStore::maxOffset, now);
    auto const last = calendar.dateByAddingDays(DayOffsetStore::maxOffset, now);
    if (!first || !last) return std::nullopt;
    return Interval{.start = dayAround(*first, calendar).start, .end = dayAround(*last, calendar).end};
}

// A meet's place among others, from 1; 0 when it is none of them.
std::size_t placeAmong(std::vector<MeetEntity> const& meets, MeetEntity const& meet) {
    auto const found = std::ranges::find(meets, meet.metId, &MeetEntity::metId);
    return found == meets.end() ? 0 : static_cast<std::size_t>(found - meets.begin()) + 1;
}

// Looks at events as the widget does, and asks its own parts what becomes of each.
class Explainer {
public:
    Explainer(Composition::LiveServices& live, ScheduleWidgetServices const& services)
        : live(live),
          services(services),
          calendar(services.region->currentCalendar()),
          // No colour is told, so that no desktop need be asked for its scheme.
          appearance(services.appearance, Platform::ColorScheme::light) {}

    [[nodiscard]] MeetEntity meetOf(Platform::EKEvent const& event) const {
        auto const info = Meetings::EventKitMeetMapper::recurrenceInfo(event);
        return Meetings::EventKitMeetMapper::toMeetEntity(event, info.frequency, info.weekdays,
                                                          *services.meetingsTexts, appearance);
    }

    [[nodiscard]] bool isAccountEnabled() const {
        return CalendarProviders::EnabledCalendarAccountsStore::load(*services.files)
            .contains(CalendarProviders::AccountProviderEnum::eventKit);
    }

    [[nodiscard]] bool mayReadCalendars() const {
        return services.eventStore()->authorizationStatus() == Platform::EKAuthorizationStatus::fullAccess;
    }

    [[nodiscard]] std::vector<Platform::EKEvent> eventsIn(Interval const& interval) const {
        auto const store = services.eventStore();
        return store->eventsMatching(store->predicateForEvents(interval.start, interval.end, std::nullopt));
    }

    [[nodiscard]] std::vector<Platform::OmittedEvent> omittedIn(Interval const& interval) const {
        auto const places = live.calendarPlaces();
        auto const configuration = live.calendarConfiguration();
        if (!places || !configuration) return {};
        return Platform::omittedEvents(
            Platform::rootsOfStore(*places, configuration->load().roots),
            services.eventStore()->calendarsForEntityType(Platform::EKEntityType::event), interval.start,
            interval.end, calendar.timeZone());
    }

    [[nodiscard]] ExplainedMeet explained(Platform::EKEvent const& event,
                                          ScheduleWidgetView const& view) const {
        ExplainedMeet explained = {.meet = meetOf(event),
                                   .rule = ShowingRule::card,
                                   .file = event.sourceFile,
                                   .line = event.sourceLine};
        explained.rule = ruleOf(explained.meet, view);
        if (explained.rule == ShowingRule::card)
            explained.place = placeAmong(view.visibleMeetings(), explained.meet);
        if (explained.rule == ShowingRule::allDayRow)
            explained.place = placeAmong(view.allDayMeetings(), explained.meet);
        return explained;
    }

private:
    [[nodiscard]] ShowingRule ruleOf(MeetEntity const& meet, ScheduleWidgetView const& view) const {
        if (placeAmong(view.entry.meetings, meet) == 0) return whyNotOnThePage(meet, view);
        if (placeAmong(view.allDayMeetings(), meet) != 0)
            return view.showsAllDaySection() ? ShowingRule::allDayRow : ShowingRule::noAllDaySection;
        if (placeAmong(view.timedMeetings(), meet) == 0) return ShowingRule::ended;
        return placeAmong(view.visibleMeetings(), meet) == 0 ? ShowingRule::didNotFit : ShowingRule::card;
    }

    [[nodiscard]] ShowingRule whyNotOnThePage(MeetEntity const& meet, ScheduleWidgetView const& view) const {
        if (!isAccountEnabled()) return ShowingRule::accountNotEnabled;
        if (hidden.contains(meet.metCalendarIdentifier)) return ShowingRule::hiddenCalendar;
        if (!calendar.isDateInSameDay(meet.metDate, view.entry.date)) return ShowingRule::startsOnAnotherDay;
        return ShowingRule::outsideReach;
    }

    Composition::LiveServices& live;
    ScheduleWidgetServices const& services;
    Foundation::Calendar calendar;
    AskedOnceAppearance appearance;
    std::set<std::string> hidden = Meetings::HiddenCalendarsStore::load(*services.files);
};

ShowingRule ruleOf(Platform::ICalendar::Omission::Reason reason) {
    using Reason = Platform::ICalendar::Omission::Reason;
    switch (reason) {
    case Reason::excludedDate: return ShowingRule::excludedDate;
    case Reason::excludedByRule: return ShowingRule::excludedByRule;
    case Reason::cancelledOccurrence: return ShowingRule::cancelledOccurrence;
    case Reason::cancelledEvent: return ShowingRule::cancelledEvent;
    case Reason::movedOccurrence: return ShowingRule::movedOccurrence;
    }
    std::unreachable();
}

std::optional<ShowingRule> ruleOfDay(Explainer const& explainer, ShownDay const& day) {
    if (!explainer.isAccountEnabled()) return ShowingRule::accountNotEnabled;
    if (day.entry.hasAccessError) return ShowingRule::accessDenied;
    bool const isInReach =
        day.entry.dayOffset >= -DayOffsetStore::maxOffset && day.entry.dayOffset <= DayOffsetStore::maxOffset;
    if (!isInReach) return ShowingRule::beyondButtons;
    return std::nullopt;
}

// One that moved within its day is there.
bool staysOnItsDay(Platform::OmittedEvent const& omitted, Foundation::Calendar const& calendar) {
    return omitted.movedTo && calendar.isDateInSameDay(*omitted.movedTo, *omitted.event.startDate);
}

ExplainedMeet explainedOmission(Platform::OmittedEvent const& omitted, Explainer const& explainer) {
    return {.meet = explainer.meetOf(omitted.event),
            .rule = ruleOf(omitted.reason),
            .file = omitted.event.sourceFile,
            .line = omitted.event.sourceLine,
            .causeFile = omitted.causeFile,
            .causeLine = omitted.causeLine,
            .movedTo = omitted.movedTo};
}

// Equal starts stay in the order in which they were found.
void sortByStart(std::vector<ExplainedMeet>& meets) {
    std::vector<std::pair<double, std::size_t>> order;
    for (auto const& explained : meets)
        order.emplace_back(explained.meet.metDate.secondsSince1970, order.size());
    std::ranges::sort(order);
    std::vector<ExplainedMeet> sorted;
    for (auto const& [start, place] : order)
        sorted.push_back(std::move(meets[place]));
    meets = std::move(sorted);
}

} // namespace

bool DayExplanation::isShown(ExplainedMeet const& explained) const {
    bool const hasARow = explained.rule == ShowingRule::card || explained.rule == ShowingRule::allDayRow;
    return hasARow && !dayRule;
}

DayExplanation explainedDay(Composition::LiveServices& live, ScheduleWidgetServices const& services,
                            Foundation::TaskLoop& loop, std::optional<std::int64_t> offset,
                            Platform::WidgetFamily family) {
    auto const day = shownDay(services, loop, offset);
    Explainer const explainer(live, services);
    WidgetExtension::QuilloraWidgetBundle const bundle(services);
    auto const view = bundle.body().front().content(day.entry, family, Platform::ColorScheme::light);
    DayExplanation explanation = {.date = day.entry.date,
                                  .dayOffset = day.entry.dayOffset,
                                  .family = family,
                                  .mostCards = view.maxVisibleEvents(),
                                  .dayRule = ruleOfDay(explainer, day),
                                  .meets = {}};
    if (!explainer.mayReadCalendars()) return explanation;

    auto const interval = dayAround(day.entry.date, view.calendar);
    for (auto const& event : explainer.eventsIn(interval))
        explanation.meets.push_back(explainer.explained(event, view));
    for (auto const& omitted : explainer.omittedIn(interval)) {
        // What starts on another day would not be here either.
        bool const startsHere = view.calendar.isDateInSameDay(*omitted.event.startDate, explanation.date);
        if (startsHere && !staysOnItsDay(omitted, view.calendar))
            explanation.meets.push_back(explainedOmission(omitted, explainer));
    }
    sortByStart(explanation.meets);
    return explanation;
}

std::vector<ExplainedMeet> meetsOnOtherDays(Composition::LiveServices& live,
                                            ScheduleWidgetServices const& services, Foundation::Date date,
                                            std::function<bool(MeetEntity const&)> const& isMeant) {
    Explainer const explainer(live, services);
    std::vector<ExplainedMeet> found;
    auto const calendar = services.region->currentCalendar();
    auto const interval = daysOfButtons(services.clock->now(), calendar);
    if (!interval || !explainer.mayReadCalendars()) return found;
    auto const isThere = [&](MeetEntity const& meet) {
        return !calendar.isDateInSameDay(meet.metDate, date) && isMeant(meet);
    };
    for (auto const& event : explainer.eventsIn(*interval)) {
        auto meet = explainer.meetOf(event);
        if (!isThere(meet)) continue;
        found.push_back({.meet = std::move(meet),
                         .rule = ShowingRule::startsOnAnotherDay,
                         .file = event.sourceFile,
                         .line = event.sourceLine});
    }
    for (auto const& omitted : explainer.omittedIn(*interval)) {
        auto explained = explainedOmission(omitted, explainer);
        if (isThere(explained.meet) && !staysOnItsDay(omitted, calendar))
            found.push_back(std::move(explained));
    }
    sortByStart(found);
    return found;
}

} // namespace Companion

#include "Applications/Companion/MeetArguments.h"

#include "Applications/Companion/MeetTexts.h"
#include "Applications/Companion/MeetWords.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "Foundation/DateFormatting.h"
#include "Foundation/Text.h"
#include "Meetings/EventKit/EventKitMeetMapper.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace Companion {

using Foundation::Calendar;
using Foundation::Date;
using Platform::EKRecurrenceFrequency;
using std::chrono::local_days;

namespace {

constexpr std::array<std::string_view, 7> weekdayNames = {"sun", "mon", "tue", "wed", "thu", "fri", "sat"};
constexpr std::int64_t minutesOfAnHour = 60;

// A text as typed; a shell hands over any bytes.
std::optional<std::string> typed(ArgumentValues const& values, std::string_view option) {
    auto const value = values.option(option);
    if (!value) return std::nullopt;
    return Foundation::Text::sanitizedUTF8(*value);
}

// All of the text as a number without a sign; absent when there is anything else.
std::optional<std::int64_t> digits(std::string_view text) {
    std::int64_t number = 0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    bool const isWhole = error == std::errc() && end == text.data() + text.size();
    if (!isWhole || text.starts_with('-')) return std::nullopt;
    return number;
}

std::optional<ClockTime> clockTime(std::string_view text) {
    auto const colon = text.find(':');
    if (colon == std::string_view::npos || colon > 2 || text.size() != colon + 3) return std::nullopt;
    auto const hour = digits(text.substr(0, colon));
    auto const minute = digits(text.substr(colon + 1));
    if (!hour || !minute || *hour > 23 || *minute > 59) return std::nullopt;
    return ClockTime{.hour = static_cast<std::int32_t>(*hour), .minute = static_cast<std::int32_t>(*minute)};
}

std::optional<TypedTime> typedTime(ArgumentValues const& values, std::string_view option,
                                   Calendar const& calendar) {
    auto const text = typed(values, option);
    if (!text) return std::nullopt;
    if (auto const clock = clockTime(*text)) return TypedTime(*clock);
    auto const date = Foundation::momentFromISO8601(*text, calendar);
    if (!date) throw CommandError::wrongUse(Texts::notATime(option, *text));
    constexpr std::size_t lengthOfADay = 10;
    if (text->size() == lengthOfADay) return TypedTime(civilDay(option, *text));
    return TypedTime(*date);
}

// "90", "45m", "2h" or "1h30m"
std::optional<std::int64_t> minutesIn(std::string_view text) {
    constexpr std::int64_t longest = 10'000'000; // Nineteen years.
    std::int64_t minutes = 0;
    if (auto const hour = text.find('h'); hour != std::string_view::npos) {
        auto const hours = digits(text.substr(0, hour));
        if (!hours || *hours > longest) return std::nullopt;
        minutes = *hours * minutesOfAnHour;
        text.remove_prefix(hour + 1);
        if (text.empty()) return minutes;
    }
    if (text.ends_with('m')) text.remove_suffix(1);
    auto const rest = digits(text);
    if (!rest || *rest > longest) return std::nullopt;
    return minutes + *rest;
}

std::optional<std::int64_t> typedMinutes(ArgumentValues const& values) {
    auto const text = typed(values, "--duration");
    if (!text) return std::nullopt;
    auto const minutes = minutesIn(*text);
    if (!minutes) throw CommandError::wrongUse(Texts::notADuration(*text));
    return minutes;
}

std::int64_t weekdayNumber(std::string_view word) {
    // A number is passed on as it is: which days there are is the store's to say.
    if (auto const number = digits(word)) return *number;
    std::string name(word.substr(0, 3));
    std::ranges::transform(name, name.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
    });
    auto const found = std::ranges::find(weekdayNames, name);
    if (found == weekdayNames.end()) throw CommandError::wrongUse(Texts::notAWeekday(word));
    return found - weekdayNames.begin() + 1;
}

std::set<std::int64_t> typedWeekdays(ArgumentValues const& values) {
    std::set<std::int64_t> weekdays;
    auto const text = typed(values, "--weekdays");
    if (!text) return weekdays;
    std::string_view rest = *text;
    while (true) {
        auto const comma = rest.find(',');
        weekdays.insert(weekdayNumber(rest.substr(0, comma)));
        if (comma == std::string_view::npos) return weekdays;
        rest.remove_prefix(comma + 1);
    }
}

std::optional<EKRecurrenceFrequency> frequencyCalled(std::string_view name) {
    if (name == "daily") return EKRecurrenceFrequency::daily;
    if (name == "weekly") return EKRecurrenceFrequency::weekly;
    if (name == "monthly") return EKRecurrenceFrequency::monthly;
    if (name == "yearly") return EKRecurrenceFrequency::yearly;
    return std::nullopt;
}

std::optional<TypedRepetition> typedRepetition(ArgumentValues const& values) {
    auto const name = values.option("--repeat");
    if (!name) {
        for (auto const* option : {"--weekdays", "--until", "--count"})
            if (values.has(option)) throw CommandError::wrongUse(Texts::needsRepeat(option));
        return std::nullopt;
    }
    TypedRepetition repetition = {.frequency = frequencyCalled(*name),
                                  .weekdays = typedWeekdays(values),
                                  .count = std::nullopt,
                                  .lastDay = std::nullopt};
    bool const isWeekly = repetition.frequency == EKRecurrenceFrequency::weekly;
    if (values.has("--weekdays") && !isWeekly) throw CommandError::wrongUse(Texts::weekdaysNeedWeekly());
    if (!repetition.frequency && (values.has("--until") || values.has("--count")))
        throw CommandError::wrongUse(Texts::needsRepeat(values.has("--until") ? "--until" : "--count"));
    if (auto const text = values.option("--count")) {
        repetition.count = wholeNumber("--count", *text);
        if (*repetition.count < 1) throw CommandError::wrongUse(Texts::notACount(*text));
    }
    if (auto const text = values.option("--until")) repetition.lastDay = civilDay("--until", *text);
    return repetition;
}

Meetings::MeetRecurrenceFrequency meetFrequency(TypedRepetition const& repetition) {
    using Meetings::MeetRecurrenceFrequency;
    if (repetition.frequency == EKRecurrenceFrequency::daily) return MeetRecurrenceFrequency::daily;
    if (repetition.frequency == EKRecurrenceFrequency::weekly) return MeetRecurrenceFrequency::weekly;
    if (repetition.frequency == EKRecurrenceFrequency::monthly) return MeetRecurrenceFrequency::monthly;
    return MeetRecurrenceFrequency::none;
}

std::optional<std::string> typedLink(ArgumentValues const& values) {
    auto text = typed(values, "--url");
    if (!text || text->empty()) return text;
    auto const url = Foundation::URL::fromText(*text);
    // Words are a relative link, which leads nowhere from a meet.
    if (!url || !Foundation::URLPlace::of(*url)) throw CommandError::wrongUse(Texts::notALink(*text));
    return text;
}

// The instant of a time on `day`'s clocks, or of a moment.
Date instantOf(std::string_view option, TypedTime const& time, local_days day, Calendar const& calendar) {
    if (auto const* moment = std::get_if<Date>(&time)) return *moment;
    auto const* clock = std::get_if<ClockTime>(&time);
    if (clock == nullptr) throw CommandError::wrongUse(Texts::needsATime(option));
    std::chrono::year_month_day const date(day);
    auto const instant =
        calendar.dateFromComponents({.year = static_cast<int>(date.year()),
                                     .month = static_cast<std::int32_t>(unsigned{date.month()}),
                                     .day = static_cast<std::int32_t>(unsigned{date.day()}),
                                     .hour = clock->hour,
                                     .minute = clock->minute,
                                     .second = 0,
                                     .weekday = 0});
    if (!instant) throw CommandError::wrongUse(Texts::needsATime(option));
    return *instant;
}

local_days dayOf(std::string_view option, TypedTime const& time) {
    auto const* day = std::get_if<local_days>(&time);
    if (day == nullptr) throw CommandError::wrongUse(Texts::needsADay(option));
    return *day;
}

// What lies beyond them has no day and no time to be told by.
void requireWithinTheYears(Date end, Calendar const& calendar) {
    if (!calendar.dateByAddingMinutes(0, end)) throw CommandError::wrongUse(Texts::endsBeyondTheYears());
}

// The end typed as a time or a length; absent when neither was.
std::optional<Date> typedEnd(MeetArguments const& arguments, Date start, Calendar const& calendar) {
    if (arguments.end) return instantOf("--end", *arguments.end, calendar.day(start), calendar);
    if (!arguments.minutes) return std::nullopt;
    auto const end = calendar.dateByAddingMinutes(*arguments.minutes, start);
    if (!end) throw CommandError::wrongUse(Texts::endsBeyondTheYears());
    return end;
}

// The day of a meet on these clocks. A service's instant can lie beyond the years that they have; then the
// nearest day of them.
local_days dayOnTheClocks(Date date, Calendar const& calendar) {
    if (calendar.dateByAddingMinutes(0, date)) return calendar.day(date);
    bool const isBeforeThem = date.secondsSince1970 < 0;
    return isBeforeThem ? local_days(std::chrono::year(1) / 1 / 1)
                        : local_days(std::chrono::year(9999) / 12 / 31);
}

void refuseMinutesOfWholeDays(MeetArguments const& arguments) {
    if (arguments.minutes) throw CommandError::wrongUse(Texts::wholeDaysHaveNoDuration());
}

MeetTimes changedDays(MeetArguments const& arguments, Meetings::MeetEntity const& meet,
                      Calendar const& calendar) {
    refuseMinutesOfWholeDays(arguments);
    auto const formerFirst = calendar.day(meet.metDate);
    auto const formerEnd = calendar.day(endOf(meet));
    auto const first = arguments.start ? dayOf("--start", *arguments.start) : formerFirst;
    auto const end = arguments.end ? dayOf("--end", *arguments.end) + std::chrono::days(1)
                                   : first + (formerEnd - formerFirst);
    // The end is the day after the last one, and may be the first that lies beyond.
    requireWithinTheYears(calendar.startOfDay(end - std::chrono::days(1)), calendar);
    return {.start = calendar.startOfDay(first), .end = calendar.startOfDay(end)};
}

} // namespace

bool TypedRepetition::fitsAMeet() const {
    return frequency != EKRecurrenceFrequency::yearly && !count && !lastDay;
}

bool MeetArguments::goesBeyondAMeet() const {
    return isAllDay || location || link || (repetition && !repetition->fitsAMeet());
}

bool MeetArguments::isEmpty() const {
    return !name && !description && !location && !link && !start && !end && !minutes && !repetition;
}

MeetArguments meetArguments(ArgumentValues const& values, Calendar const& calendar) {
    return {.name = typed(values, "--name"),
            .description = typed(values, "--description"),
            .location = typed(values, "--location"),
            .link = typedLink(values),
            .isAllDay = values.has("--all-day"),
            .start = typedTime(values, "--start", calendar),
            .end = typedTime(values, "--end", calendar),
            .minutes = typedMinutes(values),
            .repetition = typedRepetition(values)};
}

std::vector<CommandOption> meetFieldOptions() {
    return {
        {.name = "--start", .valueName = "TIME", .help = Texts::text("meet-option-start")},
        {.name = "--end", .valueName = "TIME", .help = Texts::text("meet-option-end")},
        {.name = "--duration",
         .valueName = "LENGTH",
         .help = Texts::text("meet-option-duration"),
         .excludes = {"--end"}},
        {.name = "--description", .valueName = "TEXT", .help = Texts::text("meet-option-description")},
        {.name = "--location", .valueName = "PLACE", .help = Texts::text("meet-option-location")},
        {.name = "--url", .valueName = "LINK", .help = Texts::text("meet-option-url")},
        {.name = "--weekdays", .valueName = "DAYS", .help = Texts::text("meet-option-weekdays")},
        {.name = "--until",
         .valueName = "DATE",
         .help = Texts::text("meet-option-until"),
         .kind = ValueKind::day,
         .excludes = {"--count"}},
        {.name = "--count",
         .valueName = "N",
         .help = Texts::text("meet-option-count"),
         .kind = ValueKind::number},
    };
}

MeetTimes newTimes(MeetArguments const& arguments, local_days day, Calendar const& calendar) {
    if (arguments.isAllDay) {
        refuseMinutesOfWholeDays(arguments);
        auto const first = arguments.start ? dayOf("--start", *arguments.start) : day;
        auto const last = arguments.end ? dayOf("--end", *arguments.end) : first;
        return {.start = calendar.startOfDay(first), .end = calendar.startOfDay(last + std::chrono::days(1))};
    }
    if (!arguments.start) throw CommandError::wrongUse(Texts::needsAStart());
    auto const start = instantOf("--start", *arguments.start, day, calendar);
    if (auto const end = typedEnd(arguments, start, calendar)) return {.start = start, .end = *end};
    auto const end = calendar.dateByAddingMinutes(minutesOfAnHour, start);
    if (!end) throw CommandError::wrongUse(Texts::endsBeyondTheYears());
    return {.start = start, .end = *end};
}

MeetTimes changedTimes(MeetArguments const& arguments, Meetings::MeetEntity const& meet,
                       Calendar const& calendar) {
    bool const isMoved = arguments.start || arguments.end || arguments.minutes;
    if (!isMoved) return {.start = meet.metDate, .end = endOf(meet)};
    if (meet.metIsAllDay) return changedDays(arguments, meet, calendar);
    auto const start = arguments.start ? instantOf("--start", *arguments.start,
                                                   dayOnTheClocks(meet.metDate, calendar), calendar)
                                       : meet.metDate;
    if (auto const end = typedEnd(arguments, start, calendar)) return {.start = start, .end = *end};
    auto const end = start.addingTimeInterval(meet.metDuration);
    requireWithinTheYears(end, calendar);
    return {.start = start, .end = end};
}

void checkLastDay(MeetArguments const& arguments, Date start, Calendar const& calendar) {
    auto const& repetition = arguments.repetition;
    if (repetition && repetition->lastDay && *repetition->lastDay < calendar.day(start))
        throw CommandError::wrongUse(Texts::untilLiesBefore());
}

void writeFields(MeetArguments const& arguments, Platform::EKEvent& event, Calendar const& calendar) {
    auto const unlessEmpty = [](std::string const& text) {
        return text.empty() ? std::nullopt : std::optional(text);
    };
    if (arguments.name) event.title = arguments.name;
    if (arguments.description) event.notes = unlessEmpty(*arguments.description);
    if (arguments.location) event.location = unlessEmpty(*arguments.location);
    if (arguments.link) event.url = Foundation::URL::fromText(*arguments.link);
    if (!arguments.repetition) return;

    auto const& repetition = *arguments.repetition;
    event.recurrenceRules.clear();
    if (!repetition.frequency) return;
    if (repetition.frequency == EKRecurrenceFrequency::yearly) {
        event.recurrenceRules.push_back({.frequency = EKRecurrenceFrequency::yearly});
    } else {
        Meetings::EventKitMeetMapper::applyRecurrence(meetFrequency(repetition), repetition.weekdays, event,
                                                      calendar);
    }
    auto& rule = event.recurrenceRules.front();
    rule.occurrenceCount = repetition.count;
    if (repetition.lastDay) {
        // The last second of that day: the end of a rule belongs to it.
        rule.endDate = calendar.startOfDay(*repetition.lastDay + std::chrono::days(1)).addingTimeInterval(-1);
    }
}

void writeFields(MeetArguments const& arguments, Meetings::MeetEntity& meet) {
    if (arguments.name) meet.metName = *arguments.name;
    if (arguments.description) meet.metDescription = *arguments.description;
    if (!arguments.repetition) return;
    meet.metRecurrenceFrequency = meetFrequency(*arguments.repetition);
    meet.metRecurringWeekdays = arguments.repetition->weekdays;
}

} // namespace Companion

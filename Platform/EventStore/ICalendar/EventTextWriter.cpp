#include "Platform/EventStore/ICalendar/EventTextWriter.h"

#include "Platform/EventStore/ICalendar/CivilDays.h"
#include "Platform/EventStore/ICalendar/ContentLine.h"
#include "Platform/EventStore/ICalendar/ContentLineWriter.h"

#include <charconv>
#include <cstddef>
#include <vector>

namespace Platform::ICalendar {
namespace {

std::string utcText(std::int64_t utcSeconds) {
    return CalendarTime{.form = TimeForm::utc, .zone = 0, .localSeconds = utcSeconds}.text();
}

std::string durationText(EventTimes const& times) {
    auto const length = times.end - times.start;
    if (times.isAllDay) return "P" + std::to_string(length / secondsPerDay) + "D";
    std::string text = "PT";
    if (length >= 3600) text += std::to_string(length / 3600) + "H";
    if (length / 60 % 60 != 0) text += std::to_string(length / 60 % 60) + "M";
    if (length % 60 != 0 || length == 0) text += std::to_string(length % 60) + "S";
    return text;
}

// RFC 5545 §3.3.10: an end is a DATE where the start is one, local where that is floating, else in UTC.
std::string untilText(std::int64_t until, TimeForm startForm, EventZone const& viewer) {
    bool const isLocal = startForm == TimeForm::date || startForm == TimeForm::floating;
    return CalendarTime{.form = isLocal ? startForm : TimeForm::utc,
                        .zone = 0,
                        .localSeconds = isLocal ? viewer.local(until) : until}
        .text();
}

void writeText(ComponentText& event, std::string_view name, std::optional<TextChange> const& change) {
    if (!change) return;
    if (!change->text) return event.remove(name);
    auto const value = name == "URL" ? uriText(*change->text) : escapedText(*change->text);
    auto const known = event.first(name);
    if (!known) return event.add(name, {}, value);
    // What shows the same text in another form does not any more.
    event.replace(known->line, withParameter(known->parameters, "ALTREP", std::nullopt), value);
}

} // namespace

ComponentText newEvent(std::string_view uid, std::int64_t now, std::string_view lineBreak) {
    ComponentText event(contentLine("BEGIN", {}, "VEVENT", lineBreak) +
                        contentLine("END", {}, "VEVENT", lineBreak));
    event.add("UID", {}, escapedText(uid));
    event.add("DTSTAMP", {}, utcText(now));
    event.add("CREATED", {}, utcText(now));
    event.add("LAST-MODIFIED", {}, utcText(now));
    return event;
}

void writeTexts(ComponentText& event, EventChange const& change) {
    writeText(event, "SUMMARY", change.title);
    writeText(event, "DESCRIPTION", change.notes);
    writeText(event, "LOCATION", change.location);
    writeText(event, "URL", change.url);
}

void writeTime(ComponentText& event, std::string_view name, WrittenTime const& time) {
    auto const known = event.first(name);
    if (!known) return event.add(name, time.parameters(), time.value());
    std::optional<std::string_view> const valueKind =
        time.form == TimeForm::date ? std::optional<std::string_view>("DATE") : std::nullopt;
    std::optional<std::string_view> const zone =
        time.form == TimeForm::zoned ? std::optional<std::string_view>(time.zone) : std::nullopt;
    auto const parameters = withParameter(withParameter(known->parameters, "VALUE", valueKind), "TZID", zone);
    bool const isSame = parameters == known->parameters && trimmed(known->value) == time.value();
    if (!isSame) event.replace(known->line, parameters, time.value());
}

void writeTimes(ComponentText& event, EventTimes const& times, TimesWriting const& writing) {
    auto const timeAt = [&](WritingClock const& clock, std::int64_t seconds, bool mayLeaveClock) {
        if (times.isAllDay) return WrittenTime{.form = TimeForm::date, .zone = {}, .localSeconds = seconds};
        return mayLeaveClock ? clock.exactlyAt(seconds) : clock.at(seconds);
    };
    writeTime(event, "DTSTART", timeAt(writing.start, times.start, !writing.isRecurring));

    auto const length = times.end - times.start;
    auto const duration = event.first("DURATION");
    bool const hasEnd = event.first("DTEND").has_value();
    if (duration && !hasEnd) {
        if (length != writing.lengthBefore)
            event.replace(duration->line, duration->parameters, durationText(times));
        return;
    }
    auto const lengthWithoutEnd = times.isAllDay ? secondsPerDay : 0;
    if (hasEnd || length != lengthWithoutEnd) writeTime(event, "DTEND", timeAt(writing.end, times.end, true));
}

void writeRules(ComponentText& event, std::vector<RuleChange> const& rules, TimeForm startForm,
                EventZone const& viewer) {
    auto known = event.properties("RRULE");
    for (std::size_t index = known.size(); index > rules.size(); --index)
        event.removeLine(known[index - 1].line);
    for (std::size_t index = 0; index < rules.size(); ++index) {
        auto rule = rules[index].rule;
        if (auto const until = rules[index].until) rule.set("UNTIL", untilText(*until, startForm, viewer));
        if (index >= known.size()) {
            event.add("RRULE", {}, rule.text());
        } else if (RuleText(known[index].value) != rule) {
            event.replace(known[index].line, known[index].parameters, rule.text());
        }
    }
}

void stamp(ComponentText& event, Revision revision, std::int64_t now) {
    event.set("DTSTAMP", utcText(now));
    event.set("LAST-MODIFIED", utcText(now));
    if (revision == Revision::ofTexts) return;
    auto const known = event.first("SEQUENCE");
    std::int64_t sequence = 0;
    if (known) {
        auto const text = trimmed(known->value);
        std::from_chars(text.data(), text.data() + text.size(), sequence);
    }
    // An INTEGER of the format has 32 bits.
    constexpr std::int64_t largest = 2'147'483'647;
    if (sequence < largest) event.set("SEQUENCE", std::to_string(sequence + 1));
}

std::string newEventText(std::string_view uid, EventChange const& content, Foundation::TimeZone const& viewer,
                         std::int64_t now, std::string_view lineBreak) {
    auto event = newEvent(uid, now, lineBreak);
    bool const isRecurring = content.rules && !content.rules->empty();
    auto const clock = isRecurring ? WritingClock::ofViewersDays(viewer) : WritingClock::ofViewer(viewer);
    writeTimes(event, *content.times,
               {.start = clock, .end = clock, .lengthBefore = std::nullopt, .isRecurring = isRecurring});
    writeTexts(event, content);
    if (isRecurring) {
        auto const form = content.times->isAllDay ? TimeForm::date : clock.form;
        writeRules(event, *content.rules, form, EventZone(viewer));
    }
    return event.text();
}

void makeNew(ComponentText& event, std::string_view uid, std::int64_t now) {
    event.set("UID", escapedText(uid));
    event.remove("SEQUENCE");
    event.set("DTSTAMP", utcText(now));
    event.set("CREATED", utcText(now));
    event.set("LAST-MODIFIED", utcText(now));
}

} // namespace Platform::ICalendar

#include "Platform/EventStore/ICalendar/EventBuilder.h"

#include "Foundation/MD5.h"
#include "Foundation/UUID.h"
#include "Platform/EventStore/ICalendar/CivilDays.h"

#include <charconv>
#include <utility>

namespace Platform::ICalendar {
namespace {

EventComponent const emptyEvent{.uid = {}, .hasUID = false, .start = {}};

// A value for a message: short, one line, valid UTF-8.
std::string shortened(std::string_view value) {
    constexpr std::size_t longest = 60;
    return PropertyValue(value.substr(0, longest)).uri() + (value.size() > longest ? "…" : "");
}

bool isSameClock(CalendarTime const& left, CalendarTime const& right) {
    return left.form == right.form && left.zone == right.zone;
}

EventStatus statusFromText(std::string_view text) {
    if (equalsIgnoringCase(text, "CANCELLED")) return EventStatus::cancelled;
    if (equalsIgnoringCase(text, "CONFIRMED")) return EventStatus::confirmed;
    if (equalsIgnoringCase(text, "TENTATIVE")) return EventStatus::tentative;
    return EventStatus::none;
}

// The same for the same event in every export: the lines that say when it was written are left out.
std::string uidFromContent(std::string_view bytes) {
    std::string content;
    ContentLineScanner lines(bytes);
    ContentLine line;
    while (lines.next()) {
        if (!splitContentLine(lines.line(), line)) continue;
        bool const isTimeOfWriting =
            equalsIgnoringCase(line.name, "DTSTAMP") || equalsIgnoringCase(line.name, "CREATED") ||
            equalsIgnoringCase(line.name, "LAST-MODIFIED") || equalsIgnoringCase(line.name, "SEQUENCE");
        if (isTimeOfWriting) continue;
        content += unfold(lines.line());
        content += '\n';
    }
    return "no-uid-" + Foundation::UUID{.bytes = Foundation::md5(content)}.uuidString();
}

// Calls `take` with each value between commas that is not empty.
template <typename Take>
void forEachValue(std::string_view values, Take take) {
    for (bool isMore = true; isMore;) {
        auto const comma = values.find(',');
        auto const value = trimmed(values.substr(0, comma));
        if (!value.empty()) take(value);
        isMore = comma != std::string_view::npos;
        if (isMore) values.remove_prefix(comma + 1);
    }
}

} // namespace

EventBuilder::EventBuilder(CalendarFile& file) : file(file), event(emptyEvent) {}

void EventBuilder::start(std::int64_t line, std::size_t offset) {
    isStarted = true;
    event = emptyEvent;
    event.line = line;
    event.offset = offset;
    startTime.reset();
    uid.reset();
    hasRange = false;
    failure.reset();
    leftOut.clear();
}

void EventBuilder::property(std::string_view line, std::int64_t lineNumber, bool isFolded) {
    // Most properties are of no interest, and the first letter tells.
    switch (line.front() | 0x20) {
    case 'd':
    case 'e':
    case 'l':
    case 'r':
    case 's':
    case 'u': break;
    default: return;
    }
    ContentLine content;
    if (!splitContentLine(line, content)) return;
    bool const isNameFolded = isFolded && content.name.find('\n') != std::string_view::npos;
    if (!isNameFolded) {
        readProperty(content, lineNumber, isFolded);
        return;
    }
    auto const name = unfold(content.name);
    content.name = name;
    readProperty(content, lineNumber, isFolded);
}

void EventBuilder::readProperty(ContentLine const& content, std::int64_t lineNumber, bool isFolded) {
    propertyLine = lineNumber;
    auto const is = [&content](std::string_view name) { return equalsIgnoringCase(content.name, name); };
    auto const keepFirst = [&content](std::optional<PropertyValue>& target) {
        if (!target) target.emplace(content.value);
    };
    switch (content.name.size()) {
    case 3:
        if (is("UID")) keepFirst(uid);
        if (is("URL")) keepFirst(event.url);
        break;
    case 5:
        if (is("DTEND")) readTimes(content, isFolded);
        if (is("RRULE")) readRule(content, isFolded);
        if (is("RDATE")) readTimes(content, isFolded);
        break;
    case 6:
        if (is("EXDATE")) readTimes(content, isFolded);
        if (is("STATUS")) event.status = statusFromText(trimmed(content.value));
        if (is("EXRULE")) readRule(content, isFolded);
        break;
    case 7:
        if (is("DTSTART") || is("DTSTAMP")) readTimes(content, isFolded);
        if (is("SUMMARY")) keepFirst(event.summary);
        break;
    case 8:
        if (is("LOCATION")) keepFirst(event.location);
        if (is("DURATION")) readTimes(content, isFolded);
        if (is("SEQUENCE")) {
            auto const text = trimmed(content.value);
            std::from_chars(text.data(), text.data() + text.size(), event.sequence);
        }
        break;
    case 11:
        if (is("DESCRIPTION")) keepFirst(event.description);
        break;
    case 13:
        if (is("RECURRENCE-ID")) readTimes(content, isFolded);
        break;
    default: break;
    }
}

void EventBuilder::readTimes(ContentLine const& content, bool isFolded) {
    auto const parameters = timeParameters(content.parameters, isFolded);
    std::string unfolded;
    auto value = content.value;
    if (isFolded) {
        unfolded = unfold(value);
        value = unfolded;
    }
    auto const is = [&content](std::string_view name) { return equalsIgnoringCase(content.name, name); };
    auto const notATime = [&content](std::string_view text) {
        return std::string(content.name) + " \"" + shortened(text) +
               "\" is not a date or time of the years 1 to 9999";
    };
    // One date of many is no reason to lose the event.
    auto const leaveOutValue = [&](std::string_view text) { leaveOut(notATime(text) + "; it is left out"); };

    if (is("DTSTAMP")) {
        auto const stamp = parseTime(value, parameters);
        if (stamp) event.stamp = stamp->localSeconds;
    } else if (is("DURATION")) {
        event.duration = parseDuration(value);
        if (!event.duration) fail("DURATION \"" + shortened(value) + "\" is not a duration");
    } else if (is("EXDATE")) {
        forEachValue(value, [&](std::string_view text) {
            auto const time = parseTime(text, parameters);
            if (time) {
                event.exceptionDates.push_back(*time);
            } else {
                leaveOutValue(text);
            }
        });
    } else if (is("RDATE")) {
        forEachValue(value, [&](std::string_view text) {
            auto const date = parseRecurrenceDate(text, parameters);
            if (date) {
                event.recurrenceDates.push_back(*date);
            } else {
                leaveOutValue(text);
            }
        });
    } else {
        auto const time = parseTime(value, parameters);
        if (!time) {
            fail(notATime(value));
        } else if (is("DTSTART")) {
            if (!startTime) startTime = time;
        } else if (is("DTEND")) {
            event.end = time;
        } else {
            event.recurrenceId = time;
            event.isThisAndFuture = hasRange;
        }
    }
}

void EventBuilder::readRule(ContentLine const& content, bool isFolded) {
    std::string unfolded;
    auto value = content.value;
    if (isFolded) {
        unfolded = unfold(value);
        value = unfolded;
    }
    auto rule = parseRule(value);
    if (!rule) {
        fail(std::string(content.name) + " \"" + shortened(value) + "\" cannot be followed: " + rule.error());
        return;
    }
    auto& rules = equalsIgnoringCase(content.name, "RRULE") ? event.rules : event.exceptionRules;
    rules.push_back(std::move(*rule));
}

TimeParameters EventBuilder::timeParameters(std::string_view parameters, bool isFolded) {
    TimeParameters result;
    if (parameters.empty()) return result;
    std::string unfolded;
    if (isFolded) {
        unfolded = unfold(parameters);
        parameters = unfolded;
    }
    ParameterScanner scanner(parameters);
    while (scanner.next()) {
        if (equalsIgnoringCase(scanner.name(), "TZID")) {
            if (!scanner.value().empty()) result.zone = zoneIndex(scanner.value());
        } else if (equalsIgnoringCase(scanner.name(), "VALUE")) {
            result.isDate = equalsIgnoringCase(scanner.value(), "DATE");
        } else if (equalsIgnoringCase(scanner.name(), "RANGE")) {
            hasRange = equalsIgnoringCase(scanner.value(), "THISANDFUTURE");
        }
    }
    return result;
}

std::uint32_t EventBuilder::zoneIndex(std::string_view identifier) {
    if (!file.zoneNames.empty() && file.zoneNames[lastZoneIndex] == identifier) return lastZoneIndex;
    auto const [entry, isNew] = zoneIndices.try_emplace(decodedParameter(identifier),
                                                        static_cast<std::uint32_t>(file.zoneNames.size()));
    if (isNew) file.zoneNames.push_back(entry->first);
    lastZoneIndex = entry->second;
    return lastZoneIndex;
}

void EventBuilder::finish(std::size_t endOffset) {
    isStarted = false;
    if (uid) event.uid = trimmed(uid->text());
    event.hasUID = !event.uid.empty();
    if (!startTime && event.recurrenceId) {
        // Some programs cancel an occurrence by its name alone.
        startTime = event.recurrenceId;
    }
    if (!startTime && !failure) failure = {.line = event.line, .reason = "the event has no DTSTART"};
    if (failure) {
        report(failure->line, Problem::Effect::skipped, std::move(failure->reason));
        return;
    }
    for (auto& [line, reason] : leftOut)
        report(line, Problem::Effect::adjusted, std::move(reason));
    event.start = *startTime;
    event.length = endOffset - event.offset;
    if (!event.hasUID)
        event.uid = uidFromContent(std::string_view(*file.bytes).substr(event.offset, event.length));
    settleEnd();
    file.events.push_back(std::move(event));
}

void EventBuilder::finishWithoutEnd(std::size_t endOffset) {
    if (!failure)
        report(event.line, Problem::Effect::adjusted, "the event has no END:VEVENT; it is taken as whole");
    finish(endOffset);
}

void EventBuilder::abandon() {
    isStarted = false;
    if (uid) event.uid = trimmed(uid->text());
    report(event.line, Problem::Effect::skipped, "the file ends inside the event");
}

// Leaves an end that is on the start's kind of clock and not before it, or none.
void EventBuilder::settleEnd() {
    if (event.end) {
        event.duration.reset();
        if (event.isAllDay()) {
            event.end->form = TimeForm::date;
            event.end->zone = 0;
            event.end->localSeconds -= floorModulo(event.end->localSeconds, secondsPerDay);
        } else if (event.end->form == TimeForm::date) {
            event.end->form = event.start.form;
            event.end->zone = event.start.zone;
        }
        bool const isBackwards =
            isSameClock(event.start, *event.end) && event.end->localSeconds < event.start.localSeconds;
        if (isBackwards) {
            adjust("DTEND lies before DTSTART; the event is shown as if it had no end");
            event.end.reset();
        }
    }
    if (event.duration && (event.duration->days < 0 || event.duration->seconds < 0)) {
        adjust("DURATION is negative; the event is shown as if it had no end");
        event.duration.reset();
    }
}

void EventBuilder::fail(std::string reason) {
    if (!failure) failure = {.line = propertyLine, .reason = std::move(reason)};
}

void EventBuilder::leaveOut(std::string reason) {
    if (leftOut.size() < CalendarFile::maximumProblems)
        leftOut.push_back({.line = propertyLine, .reason = std::move(reason)});
}

void EventBuilder::adjust(std::string reason) {
    report(event.line, Problem::Effect::adjusted, std::move(reason));
}

void EventBuilder::report(std::int64_t line, Problem::Effect effect, std::string reason) {
    if (file.problems.size() >= CalendarFile::maximumProblems) return;
    auto const knownUID = event.uid.empty() && uid ? std::string(trimmed(uid->text())) : event.uid;
    file.problems.push_back({.path = file.path,
                             .line = line,
                             .uid = knownUID.empty() ? std::nullopt : std::optional(knownUID),
                             .effect = effect,
                             .reason = std::move(reason)});
}

} // namespace Platform::ICalendar

#include "Samples/SampleEvent.h"

#include <fmt/format.h>

namespace Samples {

namespace {

std::string timeProperty(std::string_view name, SampleEvent const& event, LocalMinutes time) {
    if (event.isAllDay) {
        return fmt::format("{};VALUE=DATE:{}", name, dateText(std::chrono::floor<std::chrono::days>(time)));
    }
    if (!event.zone) return fmt::format("{}:{}", name, timeText(time));
    if (event.zone->identifier() == "UTC") return fmt::format("{}:{}Z", name, timeText(time));
    return fmt::format("{};TZID={}:{}", name, event.zone->identifier(), timeText(time));
}

std::string stampText(std::chrono::local_days created) {
    return dateText(created) + "T080000Z";
}

std::string addressOf(std::string_view name) {
    std::string address;
    for (char const character : name) {
        if (character >= 'A' && character <= 'Z') {
            address += static_cast<char>(character - 'A' + 'a');
        } else if (character >= 'a' && character <= 'z') {
            address += character;
        } else {
            address += '.';
        }
    }
    return address + "@samples.example";
}

void appendPeople(ICalendarText& text, std::vector<std::string> const& attendees) {
    if (attendees.empty()) return;
    text.line(fmt::format("ORGANIZER;CN={}:mailto:{}", attendees.front(), addressOf(attendees.front())));
    for (auto const& name : attendees) {
        text.line(fmt::format("ATTENDEE;CN={};ROLE=REQ-PARTICIPANT;PARTSTAT=ACCEPTED;RSVP=TRUE:mailto:{}",
                              name, addressOf(name)));
    }
}

void appendChange(ICalendarText& text, SampleEvent const& event, SampleChange const& change,
                  std::chrono::local_days created) {
    text.begin("VEVENT");
    text.line("UID:" + event.uid);
    text.line("DTSTAMP:" + stampText(created));
    text.line(timeProperty("RECURRENCE-ID", event, change.original));
    text.line(timeProperty("DTSTART", event, change.start));
    text.line(timeProperty("DTEND", event, change.start + change.length));
    text.line("SEQUENCE:1");
    text.property("SUMMARY", change.title);
    text.property("LOCATION", event.location);
    if (change.isCancelled) text.line("STATUS:CANCELLED");
    text.end("VEVENT");
}

} // namespace

void appendEvent(ICalendarText& text, SampleEvent const& event, std::chrono::local_days created) {
    text.begin("VEVENT");
    text.line("UID:" + event.uid);
    text.line("DTSTAMP:" + stampText(created));
    text.line(timeProperty("DTSTART", event, event.start));
    text.line(timeProperty("DTEND", event, event.start + event.length));
    if (!event.rule.empty()) text.line("RRULE:" + event.rule);
    for (auto const exception : event.exceptions)
        text.line(timeProperty("EXDATE", event, exception));
    text.property("SUMMARY", event.title);
    text.property("LOCATION", event.location);
    text.property("DESCRIPTION", event.description);
    if (!event.link.empty()) text.line("URL:" + event.link);
    text.property("CATEGORIES", event.category);
    appendPeople(text, event.attendees);
    text.line(event.isAllDay ? "TRANSP:TRANSPARENT" : "TRANSP:OPAQUE");
    text.line("STATUS:CONFIRMED");
    if (event.hasAlarm) {
        text.begin("VALARM");
        text.line("ACTION:DISPLAY");
        text.line("DESCRIPTION:Reminder");
        text.line("TRIGGER:-PT15M");
        text.end("VALARM");
    }
    text.end("VEVENT");
    for (auto const& change : event.changes)
        appendChange(text, event, change, created);
}

std::string fileOfEvent(SampleEvent const& event, std::chrono::local_days created,
                        ZoneDefinition definition) {
    ICalendarText text;
    text.beginCalendar();
    bool const isZoned = !event.isAllDay && event.zone && event.zone->identifier() != "UTC";
    if (isZoned && definition == ZoneDefinition::included) {
        text.timeZone(*event.zone, std::chrono::floor<std::chrono::days>(event.start));
    }
    appendEvent(text, event, created);
    text.end("VCALENDAR");
    return text.text();
}

} // namespace Samples

#include "Tests/EventStore/Index/RandomCalendars.h"

#include "Platform/EventStore/ICalendar/CalendarTime.h"

#include <fmt/format.h>

using Platform::ICalendar::CalendarTime;
using Platform::ICalendar::TimeForm;

namespace {

constexpr std::int64_t secondsPerDay = 86400;
constexpr std::int64_t firstDay = 20423; // 2025-12-01
constexpr int days = 180;

std::string dateText(std::int64_t day) {
    return CalendarTime{.form = TimeForm::date, .zone = 0, .localSeconds = day * secondsPerDay}.text();
}

std::string timeText(std::int64_t day, int minute) {
    return CalendarTime{
        .form = TimeForm::floating, .zone = 0, .localSeconds = day * secondsPerDay + minute * 60}
        .text();
}

} // namespace

int RandomCalendars::below(int limit) {
    return static_cast<int>(numbers() % static_cast<std::uint64_t>(limit));
}

std::string RandomCalendars::oneOf(std::vector<std::string> const& texts) {
    return texts[static_cast<std::size_t>(below(static_cast<int>(texts.size())))];
}

std::string RandomCalendars::uid() {
    if (!uids.empty() && chance(15)) return oneOf(uids);
    uids.push_back(fmt::format("uid-{}", uids.size()));
    return uids.back();
}

// "DTSTART;TZID=Europe/Madrid:20260311T080000" on one of many clocks.
std::string RandomCalendars::time(std::string const& name, int day) {
    auto const minute = below(24 * 4) * 15;
    switch (below(6)) {
    case 0: return fmt::format("{};VALUE=DATE:{}\r\n", name, dateText(firstDay + day));
    case 1: return fmt::format("{}:{}\r\n", name, timeText(firstDay + day, minute));
    case 2: return fmt::format("{}:{}Z\r\n", name, timeText(firstDay + day, minute));
    default:
        return fmt::format("{};TZID={}:{}\r\n", name,
                           oneOf({"Europe/Madrid", "Pacific/Kiritimati", "America/Adak", "Asia/Kathmandu",
                                  "W. Europe Standard Time", "Nowhere/At All", "Own Zone"}),
                           timeText(firstDay + day, minute));
    }
}

std::string RandomCalendars::rule() {
    auto text = "RRULE:FREQ=" + oneOf({"DAILY", "WEEKLY", "WEEKLY", "MONTHLY", "YEARLY", "HOURLY;BYHOUR=9"});
    if (chance(40)) text += fmt::format(";INTERVAL={}", 1 + below(5));
    switch (below(4)) {
    case 0: text += fmt::format(";COUNT={}", 1 + below(60)); break;
    case 1: text += ";UNTIL=" + dateText(firstDay + below(days)); break;
    case 2: text += fmt::format(";UNTIL={}Z", timeText(firstDay + below(days), 600)); break;
    default: break;
    }
    if (chance(30)) text += ";BYDAY=" + oneOf({"MO", "TU,TH", "SA", "MO,TU,WE,TH,FR"});
    return text + "\r\n";
}

std::string RandomCalendars::event(std::string const& uid) {
    auto const day = below(days);
    std::string text = "BEGIN:VEVENT\r\n";
    if (chance(95)) text += "UID:" + uid + "\r\n";
    text += fmt::format("SUMMARY:Event {}\r\nSEQUENCE:{}\r\n", ++madeEvents, below(3));
    text += time("DTSTART", day);
    if (chance(40))
        text += oneOf({"DURATION:PT1H\r\n", "DURATION:P3D\r\n", "DURATION:P20D\r\n", "DURATION:PT0S\r\n"});
    if (chance(30)) text += time("DTEND", day + below(3));
    if (chance(10)) text += "STATUS:CANCELLED\r\n";
    if (chance(40)) {
        text += rule();
        if (chance(30)) text += time("EXDATE", day + 7);
    }
    if (chance(10)) text += time("RDATE", below(days));
    if (chance(10)) text += "DESCRIPTION:" + std::string(static_cast<std::size_t>(below(3000)), 'd') + "\r\n";
    return text + (chance(97) ? "END:VEVENT\r\n" : "");
}

std::string RandomCalendars::overrideOf(std::string const& uid) {
    auto const day = below(days);
    auto text = fmt::format("BEGIN:VEVENT\r\nUID:{}\r\nSUMMARY:Override {}\r\nSEQUENCE:{}\r\n", uid,
                            ++madeEvents, below(3));
    text += time(chance(25) ? "RECURRENCE-ID;RANGE=THISANDFUTURE" : "RECURRENCE-ID", day);
    text += time("DTSTART", day + below(20));
    if (chance(15)) text += "STATUS:CANCELLED\r\n";
    return text + "END:VEVENT\r\n";
}

std::string RandomCalendars::content() {
    std::string text = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n";
    if (chance(10)) text += "X-WR-CALNAME:Named\r\n";
    text += "BEGIN:VTIMEZONE\r\nTZID:Own Zone\r\nBEGIN:STANDARD\r\nDTSTART:19700101T000000\r\n"
            "TZOFFSETFROM:+2330\r\nTZOFFSETTO:+2330\r\nEND:STANDARD\r\nEND:VTIMEZONE\r\n";
    // Now and then enough for a file that is read in parts.
    auto const events = chance(80) ? 1 : chance(80) ? below(6) : 300 + below(500);
    for (int number = 0; number < events; ++number) {
        auto const name = uid();
        text += event(name);
        if (chance(20)) text += overrideOf(name);
    }
    if (!uids.empty() && chance(10)) text += overrideOf(oneOf(uids));
    return text + "END:VCALENDAR\r\n";
}

std::vector<RandomCalendars::File> RandomCalendars::files(int count) {
    std::vector<File> made;
    for (int number = 0; number < count; ++number) {
        made.push_back(
            {.name = fmt::format("{:08x}.ics", static_cast<std::uint32_t>(numbers())), .content = content()});
    }
    return made;
}

#include "Tests/EventStore/ICalendar/CalendarFixtures.h"

#include "Foundation/DateFormatting.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <utility>

namespace Platform::ICalendar {
namespace {

SeriesSet seriesOfFile(std::shared_ptr<CalendarFile const> file) {
    std::vector<std::shared_ptr<CalendarFile const>> files;
    files.push_back(std::move(file));
    return {std::move(files), std::make_shared<ZoneCatalog>()};
}

std::string dayText(std::chrono::local_days day) {
    auto const midnight = std::chrono::seconds(day.time_since_epoch()).count();
    return Foundation::iso8601({.secondsSince1970 = static_cast<double>(midnight)}).substr(0, 10);
}

} // namespace

std::string sampleBytes(std::string const& name) {
    std::ifstream stream(std::string(QUILLORA_SOURCE_DIR "/Tests/EventStore/ICalendar/Events/") + name,
                         std::ios::binary);
    if (!stream) ADD_FAILURE() << "no sample " << name;
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

std::shared_ptr<CalendarFile const> sampleFile(std::string const& name) {
    return read(sampleBytes(name), name);
}

SeriesSet sampleSeries(std::string const& name) {
    return seriesOfFile(sampleFile(name));
}

SeriesSet seriesOf(std::string const& components) {
    return seriesOfFile(read("BEGIN:VCALENDAR\nVERSION:2.0\n" + components + "END:VCALENDAR\n", "given.ics"));
}

std::string eventWith(std::string const& properties) {
    return "BEGIN:VEVENT\nUID:event\nSUMMARY:Event\n" + properties + "END:VEVENT\n";
}

Foundation::Date instant(std::string_view text) {
    auto const date = Foundation::dateFromISO8601(text);
    if (!date) ADD_FAILURE() << text << " is no instant";
    return date.value_or(Foundation::Date{.secondsSince1970 = 0});
}

Foundation::TimeZone zone(std::string_view name) {
    auto const found = Foundation::TimeZone::named(name);
    if (!found) ADD_FAILURE() << "the system does not know " << name;
    return found.value_or(Foundation::TimeZone::utc());
}

std::vector<std::string> happenings(SeriesSet const& series, std::string_view from, std::string_view to,
                                    std::string_view viewer) {
    std::vector<std::string> lines;
    for (auto const& occurrence : series.occurrences(instant(from), instant(to), zone(viewer)).occurrences) {
        auto const title = occurrence.event->summary ? occurrence.event->summary->text() : "(untitled)";
        auto const interval =
            occurrence.isAllDay
                ? dayText(occurrence.firstDay) + '/' + dayText(occurrence.endDay)
                : Foundation::iso8601(occurrence.start) + '/' + Foundation::iso8601(occurrence.end);
        lines.push_back(interval + ' ' + title);
    }
    return lines;
}

std::vector<std::string> keys(SeriesSet const& series, std::string_view from, std::string_view to,
                              std::string_view viewer) {
    std::vector<std::string> found;
    for (auto const& occurrence : series.occurrences(instant(from), instant(to), zone(viewer)).occurrences) {
        found.push_back(occurrence.key.value_or("-"));
    }
    return found;
}

std::vector<std::string> reasons(std::vector<Problem> const& problems) {
    std::vector<std::string> lines;
    for (auto const& problem : problems) {
        lines.push_back("line " + std::to_string(problem.line) + ": " + problem.reason);
    }
    return lines;
}

} // namespace Platform::ICalendar

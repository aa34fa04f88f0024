#include "Samples/SampleCalendars.h"

#include "Samples/SampleArchive.h"
#include "Samples/SampleDays.h"
#include "Samples/SampleEvent.h"
#include "Samples/SampleSeries.h"

#include <array>
#include <string_view>

namespace Samples {

namespace {

struct CalendarFolder {
    std::string_view name;
    std::string_view title;
    std::string_view color;
};

constexpr auto folders = std::to_array<CalendarFolder>({
    {"birthdays", "Birthdays", "#F2A541"},
    {"design", "Design", "#2E86AB"},
    {"health", "Health", "#4AA5A8"},
    {"hiring", "Hiring", "#3A7D44"},
    {"home", "Home", "#E4572E"},
    {"partners", "Partners", "#8E6FC1"},
    {"team", "Team", "#43B0A8"},
    {"tokyo", "東京スタジオ", "#5B8E7D"},
    {"work", "Work", "#D1495B"},
});

} // namespace

void makeSampleCalendars(SampleRequest const& request, std::function<void(SampleFile const&)> const& take) {
    for (auto const& folder : folders) {
        take({.folder = std::string(folder.name),
              .name = "displayname",
              .content = std::string(folder.title)});
        take({.folder = std::string(folder.name), .name = "color", .content = std::string(folder.color)});
    }
    auto const created = request.day - std::chrono::days(60);
    auto const takeEvent = [&](SampleDayEvent const& entry) {
        take({.folder = entry.calendar,
              .name = entry.file + ".ics",
              .content = fileOfEvent(entry.event, created, ZoneDefinition::included)});
    };
    for (auto const& entry : eventsOfTheDay(request))
        takeEvent(entry);
    for (auto const& entry : eventsAroundTheDay(request))
        takeEvent(entry);
    for (auto const& entry : sampleSeries(request))
        takeEvent(entry);
    take({.folder = "", .name = "holidays.ics", .content = holidayFile(request)});
    makeSampleArchive(request, take);
}

} // namespace Samples

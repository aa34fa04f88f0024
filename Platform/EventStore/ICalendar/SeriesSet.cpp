#include "Platform/EventStore/ICalendar/SeriesSet.h"

#include "Platform/EventStore/ICalendar/CivilDays.h"
#include "Platform/EventStore/ICalendar/Series.h"
#include "Platform/EventStore/ICalendar/SeriesExpansion.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <utility>

namespace Platform::ICalendar {
namespace {

// Absent when an end is not a number.
std::optional<ExpansionWindow> windowOf(Foundation::Date from, Foundation::Date to) {
    if (std::isnan(from.secondsSince1970) || std::isnan(to.secondsSince1970)) return std::nullopt;
    auto const clamped = [](double seconds) {
        return std::clamp(seconds, static_cast<double>(firstSecond - secondsPerDay),
                          static_cast<double>(lastSecond + secondsPerDay));
    };
    return ExpansionWindow{.from = from.secondsSince1970,
                           .to = to.secondsSince1970,
                           .firstSecond =
                               static_cast<std::int64_t>(std::floor(clamped(from.secondsSince1970))),
                           .lastSecond = static_cast<std::int64_t>(std::ceil(clamped(to.secondsSince1970)))};
}

// Equal starts stay in the order in which they were found.
void sortByStart(std::vector<Occurrence>& occurrences) {
    std::vector<std::pair<double, std::size_t>> order;
    order.reserve(occurrences.size());
    for (auto const& occurrence : occurrences)
        order.emplace_back(occurrence.start.secondsSince1970, order.size());
    if (std::ranges::is_sorted(order)) return;
    std::ranges::sort(order);
    std::vector<Occurrence> sorted;
    sorted.reserve(occurrences.size());
    for (auto const& [start, index] : order)
        sorted.push_back(std::move(occurrences[index]));
    occurrences = std::move(sorted);
}

// The zones of a file that nothing explains, each at the first event that names it.
void reportUnknownZones(FileClocks const& clocks, std::vector<Problem>& problems) {
    auto const& file = *clocks.file;
    std::vector<bool> isDone(clocks.zones.size());
    for (auto const& event : file.events) {
        auto const zone = event.start.zone;
        if (event.start.form != TimeForm::zoned || isDone[zone]) continue;
        isDone[zone] = true;
        if (clocks.zones[zone]) continue;
        if (problems.size() >= CalendarFile::maximumProblems) return;
        problems.push_back({.path = file.path,
                            .line = event.line,
                            .uid = event.uid,
                            .effect = Problem::Effect::adjusted,
                            .reason = "the time zone \"" +
                                      PropertyValue(file.zoneNames[zone]).uri().substr(0, 80) +
                                      "\" is not known; its times are read on the viewer's clock"});
    }
}

} // namespace

struct SeriesSet::Contents {
    std::vector<std::shared_ptr<CalendarFile const>> files;
    std::vector<FileClocks> clocks; // One a file; series point to them.
    std::vector<Series> series;     // In the order in which the files first name them.
    std::unordered_map<std::string_view, std::size_t> indices;
    std::vector<Problem> problems;

    [[nodiscard]] Series const* find(std::string_view uid) const {
        auto const entry = indices.find(uid);
        return entry == indices.end() ? nullptr : &series[entry->second];
    }
};

SeriesSet::SeriesSet(std::vector<std::shared_ptr<CalendarFile const>> files,
                     std::shared_ptr<ZoneCatalog> zones) {
    auto made = std::make_unique<Contents>();
    made->files = std::move(files);
    made->clocks.reserve(made->files.size());
    for (auto const& file : made->files) {
        auto const& clocks = made->clocks.emplace_back(*file, *zones);
        reportUnknownZones(clocks, made->problems);
        for (auto const& event : file->events) {
            auto const [entry, isNew] = made->indices.try_emplace(event.uid, made->series.size());
            if (isNew) made->series.emplace_back();
            made->series[entry->second].add({.component = &event, .clocks = &clocks});
        }
    }
    for (auto& series : made->series)
        series.settle();
    contents = std::move(made);
}

SeriesSet::~SeriesSet() = default;
SeriesSet::SeriesSet(SeriesSet&&) noexcept = default;
SeriesSet& SeriesSet::operator=(SeriesSet&&) noexcept = default;

Expansion SeriesSet::occurrences(Foundation::Date from, Foundation::Date to,
                                 Foundation::TimeZone const& viewer, ExpansionLimits const& limits) const {
    Expansion result{.occurrences = {}, .problems = {}, .steps = 0};
    auto const window = windowOf(from, to);
    if (!window) return result;
    EventZone const viewerZone(viewer);
    for (auto const& series : contents->series) {
        SeriesExpansion(series, *window, viewerZone, limits, result).run();
    }
    sortByStart(result.occurrences);
    return result;
}

Expansion SeriesSet::occurrencesOfSeries(std::string_view uid, Foundation::Date from, Foundation::Date to,
                                         Foundation::TimeZone const& viewer,
                                         ExpansionLimits const& limits) const {
    Expansion result{.occurrences = {}, .problems = {}, .steps = 0};
    auto const window = windowOf(from, to);
    auto const* const series = contents->find(uid);
    if (!window || series == nullptr) return result;
    SeriesExpansion(*series, *window, EventZone(viewer), limits, result).run();
    sortByStart(result.occurrences);
    return result;
}

std::optional<Occurrence> SeriesSet::firstOccurrence(std::string_view uid,
                                                     Foundation::TimeZone const& viewer) const {
    auto const bounds = extent(uid, viewer);
    if (!bounds) return std::nullopt;
    // Windows that grow: nearly always the first holds it, and an empty century costs little.
    auto from = bounds->first;
    auto const end =
        bounds->last.value_or(Foundation::Date{.secondsSince1970 = static_cast<double>(lastSecond)});
    for (double width = 40.0 * secondsPerDay; from <= end; width *= 4) {
        auto const to = from.addingTimeInterval(width);
        auto found = occurrencesOfSeries(uid, from, to, viewer).occurrences;
        if (!found.empty()) return std::move(found.front());
        from = to;
    }
    return std::nullopt;
}

std::optional<SeriesExtent> SeriesSet::extent(std::string_view uid,
                                              Foundation::TimeZone const& viewer) const {
    auto const* const series = contents->find(uid);
    if (series == nullptr) return std::nullopt;
    return series->extent(EventZone(viewer));
}

EventComponent const* SeriesSet::master(std::string_view uid) const {
    auto const* const series = contents->find(uid);
    return series == nullptr || !series->master() ? nullptr : series->master()->component;
}

std::vector<std::string_view> SeriesSet::uids() const {
    std::vector<std::string_view> names;
    names.reserve(contents->series.size());
    for (auto const& series : contents->series)
        names.emplace_back(series.uid());
    return names;
}

std::vector<Problem> const& SeriesSet::problems() const {
    return contents->problems;
}

} // namespace Platform::ICalendar

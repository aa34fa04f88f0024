#include "Platform/EventStore/ICalendar/SeriesSet.h"

#include "Foundation/Text.h"
#include "Platform/EventStore/ICalendar/CivilDays.h"
#include "Platform/EventStore/ICalendar/EventLikeness.h"
#include "Platform/EventStore/ICalendar/Series.h"
#include "Platform/EventStore/ICalendar/SeriesExpansion.h"
#include "Platform/EventStore/ICalendar/SeriesGathering.h"

#include <algorithm>
#include <utility>

namespace Platform::ICalendar {
namespace {

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

// A revision says so by a higher SEQUENCE. Where it does not, they may be two events that were given one UID,
// and nobody would learn of the one that is not shown.
void reportDisplaced(SeriesGathering const& gathered, std::vector<Problem>& problems) {
    for (auto const& event : gathered.displaced) {
        auto const& uid = event.component->uid;
        auto const& shown = *gathered.series[gathered.indices.at(uid)].master();
        if (shown.component->sequence != event.component->sequence || areAlike(shown, event)) continue;
        if (problems.size() >= CalendarFile::maximumProblems) return;
        problems.push_back({.path = event.clocks->file->path,
                            .line = event.component->line,
                            .uid = uid,
                            .effect = Problem::Effect::skipped,
                            .reason = "the event in " +
                                      Foundation::Text::sanitizedUTF8(shown.clocks->file->path) + ":" +
                                      std::to_string(shown.component->line) +
                                      " has the same UID and SEQUENCE and is shown instead; give one of them "
                                      "a UID of its own to see both"});
    }
}

} // namespace

struct SeriesSet::Contents {
    Contents(std::vector<std::shared_ptr<CalendarFile const>> given, ZoneCatalog& zones)
        : files(std::move(given)),
          gathered(files, zones) {}

    std::vector<std::shared_ptr<CalendarFile const>> files;
    SeriesGathering gathered;
    std::vector<Problem> problems;
    std::vector<Problem> hidden;

    [[nodiscard]] Series const* find(std::string_view uid) const {
        auto const entry = gathered.indices.find(uid);
        return entry == gathered.indices.end() ? nullptr : &gathered.series[entry->second];
    }
};

SeriesSet::SeriesSet(std::vector<std::shared_ptr<CalendarFile const>> files,
                     std::shared_ptr<ZoneCatalog> zones) {
    auto made = std::make_unique<Contents>(std::move(files), *zones);
    for (auto const& clocks : made->gathered.clocks)
        reportUnknownZones(clocks, made->problems);
    reportDisplaced(made->gathered, made->hidden);
    contents = std::move(made);
}

SeriesSet::~SeriesSet() = default;
SeriesSet::SeriesSet(SeriesSet&&) noexcept = default;
SeriesSet& SeriesSet::operator=(SeriesSet&&) noexcept = default;

Expansion SeriesSet::occurrences(Foundation::Date from, Foundation::Date to,
                                 Foundation::TimeZone const& viewer, ExpansionLimits const& limits) const {
    Expansion result{.occurrences = {}, .problems = {}, .steps = 0};
    auto const window = expansionWindow(from, to);
    if (!window) return result;
    EventZone const viewerZone(viewer);
    for (auto const& series : contents->gathered.series) {
        SeriesExpansion(series, *window, viewerZone, limits, result).run();
    }
    sortByStart(result.occurrences);
    return result;
}

Expansion SeriesSet::occurrencesOfSeries(std::string_view uid, Foundation::Date from, Foundation::Date to,
                                         Foundation::TimeZone const& viewer,
                                         ExpansionLimits const& limits) const {
    Expansion result{.occurrences = {}, .problems = {}, .steps = 0};
    auto const window = expansionWindow(from, to);
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
    names.reserve(contents->gathered.series.size());
    for (auto const& series : contents->gathered.series)
        names.emplace_back(series.uid());
    return names;
}

std::vector<Problem> const& SeriesSet::problems() const {
    return contents->problems;
}

std::vector<Problem> const& SeriesSet::hiddenEvents() const {
    return contents->hidden;
}

} // namespace Platform::ICalendar

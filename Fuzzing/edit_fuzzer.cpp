// Any bytes are a calendar file, and any of its events may be edited: the edit ends, says what was asked for,
// and touches no other event.

#include "Foundation/TimeZone.h"
#include "Platform/EventStore/ICalendar/SeriesEditor.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace Platform::ICalendar;

constexpr std::int64_t start2026 = 1767225600;

void require(bool holds, char const* what) {
    if (holds) return;
    std::fprintf(stderr, "not so: %s\n", what);
    std::abort();
}

// The first three bytes say what is done: to which event, to which of its occurrences, and how.
struct Order {
    unsigned event;
    unsigned occurrence;
    unsigned deed;
};

enum class Deed : unsigned { rename, move, makeAllDay, giveRule, remove, count };

EventChange changeFor(Deed deed, Occurrence const& occurrence) {
    auto const start = static_cast<std::int64_t>(occurrence.start.secondsSince1970);
    auto const end = static_cast<std::int64_t>(occurrence.end.secondsSince1970);
    switch (deed) {
    case Deed::rename: return {.title = TextChange{.text = "Edited, by\na fuzzer"}};
    case Deed::move:
        return {.times = EventTimes{.isAllDay = false, .start = start + 90'000, .end = end + 93'600}};
    case Deed::makeAllDay:
        return {.times = EventTimes{.isAllDay = true, .start = start2026, .end = start2026 + 86'400}};
    case Deed::giveRule:
        return {.rules =
                    std::vector<RuleChange>{{.rule = RuleText("FREQ=WEEKLY;BYDAY=MO"), .until = start2026}},
                .rulesNameViewersDays = true};
    case Deed::remove:
    case Deed::count: break;
    }
    return {};
}

// The bytes of all events but those of one UID, in any order.
std::multiset<std::string> others(std::vector<CalendarSource> const& sources, std::string_view uid) {
    std::multiset<std::string> texts;
    for (auto const& source : sources) {
        for (auto const& event : source.file->events) {
            if (event.uid != uid) texts.insert(source.bytes.substr(event.offset, event.length));
        }
    }
    return texts;
}

void edit(std::vector<CalendarSource> const& sources, std::string const& uid, Order order) {
    auto const viewer = Foundation::TimeZone::named("Europe/Madrid").value();
    SeriesEditor const editor(sources, uid, std::make_shared<ZoneCatalog>(), viewer);
    SeriesSet const set({sources.front().file}, std::make_shared<ZoneCatalog>());
    ExpansionLimits const limits{.occurrencesPerSeries = 100, .occurrences = 1000, .stepsPerSeries = 10'000};
    auto const shown = set.occurrencesOfSeries(uid, {start2026}, {start2026 + 86'400.0 * 60}, viewer, limits);
    if (shown.occurrences.empty()) return;
    auto const key = shown.occurrences[order.occurrence % shown.occurrences.size()].key;
    auto const occurrence = editor.occurrence(key);
    if (!occurrence) return;

    auto const deed = static_cast<Deed>(order.deed / 2 % static_cast<unsigned>(Deed::count));
    auto const span = order.deed % 2 == 0 ? EditSpan::thisOccurrence : EditSpan::thisAndFuture;
    EditCircumstances const given{.now = start2026, .newUID = "new-uid-of-the-fuzzer"};
    auto const result = deed == Deed::remove
                            ? editor.remove(*occurrence, span, given)
                            : editor.save(*occurrence, changeFor(deed, *occurrence), span, given);
    if (!result) return;

    std::vector<CalendarSource> after;
    for (std::size_t index = 0; index < sources.size(); ++index) {
        auto bytes = sources[index].bytes;
        for (auto const& file : result->files) {
            if (file.source == index) bytes = spliced(bytes, file.splices);
        }
        after.push_back(calendarSource(std::move(bytes)));
    }
    require(others(after, uid) == others(sources, uid), "other events stay as they were");
    if (result->newItem) after.push_back(calendarSource(newCalendar(result->newItem->components)));
    SeriesEditor const edited(after, result->uid, std::make_shared<ZoneCatalog>(), viewer);
    if (deed == Deed::rename) {
        auto const found = edited.occurrence(result->key);
        require(found.has_value(), "a renamed event is found");
        require(found->event->summary && found->event->summary->text() == "Edited, by\na fuzzer",
                "a renamed event bears its name");
    }
    if (deed == Deed::remove && key) require(!edited.occurrence(key), "a removed occurrence is gone");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    if (size < 3 || size > 16384) return 0;
    Order const order{.event = data[0], .occurrence = data[1], .deed = data[2]};
    std::string bytes(reinterpret_cast<char const*>(data) + 3, size - 3);
    std::vector<CalendarSource> sources;
    sources.push_back(calendarSource(std::move(bytes), "fuzzed.ics"));
    auto const& events = sources.front().file->events;
    if (events.empty()) return 0;
    auto const uid = events[order.event % events.size()].uid;
    edit(sources, uid, order);
    return 0;
}

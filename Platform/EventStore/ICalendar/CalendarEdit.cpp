#include "Platform/EventStore/ICalendar/CalendarEdit.h"

#include <algorithm>
#include <utility>

namespace Platform::ICalendar {

CalendarEditBuilder::CalendarEditBuilder(std::vector<CalendarSource> const& sources, std::string uid)
    : sources(sources) {
    gathered.uid = std::move(uid);
}

void CalendarEditBuilder::remove(std::size_t source, EventComponent const& component) {
    replace(source, component, {});
}

void CalendarEditBuilder::replace(std::size_t source, EventComponent const& component, std::string text) {
    fileEdit(source).splices.push_back(
        {.offset = component.offset, .length = component.length, .text = std::move(text)});
}

void CalendarEditBuilder::add(std::size_t source, std::vector<Splice> splices) {
    std::ranges::move(splices, std::back_inserter(fileEdit(source).splices));
}

CalendarEdit CalendarEditBuilder::edit() const {
    auto edit = gathered;
    for (auto& file : edit.files) {
        auto const& source = sources[file.source];
        bool const removesOnly =
            std::ranges::all_of(file.splices, [](Splice const& splice) { return splice.text.empty(); });
        file.leavesNothing =
            removesOnly && file.splices.size() == source.file->events.size() && holdsOnly(source, edit.uid);
    }
    return edit;
}

CalendarEdit::FileEdit& CalendarEditBuilder::fileEdit(std::size_t source) {
    auto const known = std::ranges::find(gathered.files, source, &CalendarEdit::FileEdit::source);
    if (known != gathered.files.end()) return *known;
    return gathered.files.emplace_back(
        CalendarEdit::FileEdit{.source = source, .splices = {}, .leavesNothing = false});
}

} // namespace Platform::ICalendar

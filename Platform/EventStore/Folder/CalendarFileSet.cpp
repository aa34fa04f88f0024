#include "Platform/EventStore/Folder/CalendarFileSet.h"

#include <utility>

namespace Platform {

void CalendarFileSet::update(std::filesystem::path const& folder, std::vector<std::string> const& names,
                             std::int64_t now) {
    std::vector<Entry> next;
    next.reserve(names.size());
    auto known = entries.begin();
    // Both lists are in order, so one walk finds what stayed, what is new and what has gone.
    for (auto const& name : names) {
        while (known != entries.end() && known->name < name)
            ++known;
        bool const isKnown = known != entries.end() && known->name == name;
        auto entry = isKnown ? std::move(*known) : Entry{.name = name, .path = folder / name};
        if (isKnown) ++known;
        refresh(entry, now);
        next.push_back(std::move(entry));
    }
    entries = std::move(next);
}

void CalendarFileSet::refresh(Entry& entry, std::int64_t now) {
    auto const fail = [&](std::string reason) {
        entry.file = nullptr;
        entry.failure = std::move(reason);
    };
    auto const stamp = stampOfRegularFile(entry.path);
    if (!stamp) return fail(stamp.error());
    if (entry.file && !entry.wasYoung && entry.stamp == *stamp) return;

    ++readCount;
    auto read = readRegularFile(entry.path);
    if (!read) return fail(read.error());
    entry.stamp = read->stamp;
    entry.wasYoung = read->stamp.isYoung(now);
    // The same bytes give the same file: an object that stays spares the caller to sort it in again.
    if (entry.file && *entry.file->bytes == read->content) return;
    entry.file = ICalendar::read(std::move(read->content), entry.path.string());
}

std::vector<std::shared_ptr<ICalendar::CalendarFile const>> CalendarFileSet::files() const {
    std::vector<std::shared_ptr<ICalendar::CalendarFile const>> readable;
    readable.reserve(entries.size());
    for (auto const& entry : entries) {
        if (entry.file) readable.push_back(entry.file);
    }
    return readable;
}

void CalendarFileSet::appendProblems(std::vector<StoreProblem>& problems) const {
    for (auto const& entry : entries) {
        if (!entry.file) {
            problems.push_back({.path = entry.path,
                                .line = 0,
                                .effect = StoreProblem::Effect::skipped,
                                .reason = "it could not be read: " + entry.failure});
            continue;
        }
        for (auto const& problem : entry.file->problems) {
            problems.push_back({.path = entry.path,
                                .line = problem.line,
                                .effect = problem.effect == ICalendar::Problem::Effect::skipped
                                              ? StoreProblem::Effect::skipped
                                              : StoreProblem::Effect::adjusted,
                                .reason = problem.reason});
        }
    }
}

std::int64_t CalendarFileSet::reads() const {
    return readCount;
}

} // namespace Platform

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
        next.push_back(refreshed(isKnown ? &*known : nullptr, folder, name, now));
    }
    entries = std::move(next);
}

CalendarFileSet::Entry CalendarFileSet::refreshed(Entry const* known, std::filesystem::path const& folder,
                                                  std::string const& name, std::int64_t now) {
    auto path = folder / name;
    auto const failed = [&](std::string reason) {
        return Entry{.name = name,
                     .path = path,
                     .stamp = {},
                     .wasYoung = true,
                     .file = nullptr,
                     .failure = std::move(reason)};
    };
    auto const stamp = stampOfRegularFile(path);
    if (!stamp) return failed(stamp.error());
    if (known && known->file && !known->wasYoung && known->stamp == *stamp) return *known;

    ++readCount;
    auto read = readRegularFile(path);
    if (!read) return failed(read.error());
    // The same bytes give the same file: an object that stays spares the caller to sort it in again.
    bool const isSame = known && known->file && *known->file->bytes == read->content;
    auto file = isSame ? known->file : ICalendar::read(std::move(read->content), path.string());
    return {.name = name,
            .path = std::move(path),
            .stamp = read->stamp,
            .wasYoung = read->stamp.isYoung(now),
            .file = std::move(file),
            .failure = {}};
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

#include "Platform/EventStore/Folder/FolderIndex.h"
#include "Platform/EventStore/Folder/RegularFile.h"
#include "Platform/EventStore/ICalendar/CivilDays.h"

#include <algorithm>
#include <cmath>

namespace Platform {

namespace {

using Files = std::vector<std::shared_ptr<ICalendar::CalendarFile const>>;

// A second within the years that a calendar can name, and one day more.
std::int64_t wholeSecond(double seconds) {
    return static_cast<std::int64_t>(
        std::clamp(seconds, static_cast<double>(ICalendar::firstSecond - ICalendar::secondsPerDay),
                   static_cast<double>(ICalendar::lastSecond + ICalendar::secondsPerDay)));
}

} // namespace

Files FolderIndex::filesTouching(Foundation::Date from, Foundation::Date to, FileChoice const& choice,
                                 std::int64_t now) {
    if (std::isnan(from.secondsSince1970) || std::isnan(to.secondsSince1970)) return {};
    auto const first = wholeSecond(std::floor(from.secondsSince1970));
    auto const last = wholeSecond(std::ceil(to.secondsSince1970));
    return collected(
        [&](WantedFiles& wanted) {
            if (stored) {
                for (auto const& series : stored->touching(first, last)) {
                    if (series.isShared != 0 || freshUIDs.contains(series.uid)) {
                        wantAllWithUID(wanted, series.uid, choice);
                    } else {
                        want(wanted, series.file, series.parts, choice);
                    }
                }
            }
            for (auto const& [name, file] : fresh) {
                for (auto const& series : file.facts.series) {
                    if (series.bounds.touch(first, last)) wantAllWithUID(wanted, series.uid, choice);
                }
            }
        },
        now);
}

Files FolderIndex::filesWithUID(std::string_view uid, FileChoice const& choice, std::int64_t now) {
    return collected([&](WantedFiles& wanted) { wantAllWithUID(wanted, uidHash(uid), choice); }, now);
}

Files FolderIndex::filesSharingUIDs(FileChoice const& choice, std::int64_t now) {
    return collected(
        [&](WantedFiles& wanted) {
            for (std::uint32_t place = 0; stored && place < stored->header().seriesCount; ++place) {
                auto const series = stored->seriesAt(place);
                if (series.isShared != 0 || freshUIDs.contains(series.uid))
                    wantAllWithUID(wanted, series.uid, choice);
            }
            for (auto const& [uid, name] : freshUIDs) {
                if (freshUIDs.count(uid) > 1) wantAllWithUID(wanted, uid, choice);
            }
        },
        now);
}

void FolderIndex::wantAllWithUID(WantedFiles& wanted, std::uint64_t uid, FileChoice const& choice) {
    if (stored) {
        for (auto const& entry : stored->withUID(uid))
            want(wanted, entry.file, entry.parts, choice);
    }
    auto const [begin, end] = freshUIDs.equal_range(uid);
    for (auto entry = begin; entry != end; ++entry) {
        auto const& file = fresh.at(entry->second);
        auto const series = std::ranges::find(file.facts.series, uid, &SeriesFacts::uid);
        want(wanted, entry->second, file, *series, choice);
    }
}

void FolderIndex::want(WantedFiles& wanted, std::uint32_t place, std::uint32_t parts,
                       FileChoice const& choice) {
    if (place >= isStale.size()) throw IndexDamaged();
    if (isStale[place]) return;
    auto const record = stored->fileAt(place);
    auto const name = stored->nameOf(record);
    if (!choice.covers(name, record.isCalendarOfItsOwn != 0)) return;
    auto const [entry, isNew] =
        wanted.try_emplace(std::string(name), Wanted{.stamp = record.stamp, .parts = {}});
    if (parts == IndexFormat::none) return;
    auto& all = entry->second.parts;
    if (isNew) all = stored->partsFrom(record.zones);
    std::ranges::copy(stored->partsFrom(parts), std::back_inserter(all));
}

void FolderIndex::want(WantedFiles& wanted, std::string const& name, Fresh const& file,
                       SeriesFacts const& series, FileChoice const& choice) {
    if (!choice.covers(name, file.facts.isCalendarOfItsOwn)) return;
    auto const [entry, isNew] = wanted.try_emplace(name, Wanted{.stamp = file.stamp, .parts = {}});
    if (series.parts.empty()) return;
    auto& all = entry->second.parts;
    if (isNew) all = file.facts.zones;
    std::ranges::copy(series.parts, std::back_inserter(all));
}

// Loads what `collect` asks for. A file that is not as it was when its facts were noted is looked at anew,
// and then the question with it.
template <typename Collect>
Files FolderIndex::collected(Collect collect, std::int64_t now) {
    constexpr int mostAttempts = 4;
    for (int attempt = 1;; ++attempt) {
        WantedFiles wanted;
        collect(wanted);
        if (stored) stored->forget();
        forgetParsedBut(wanted);
        bool hasChanged = false;
        Files files;
        for (auto& [name, file] : wanted) {
            std::ranges::sort(file.parts, {}, &ICalendar::ExcerptPart::offset);
            auto const [first, last] = std::ranges::unique(file.parts);
            file.parts.erase(first, last);
            if (auto loaded = load(name, file, now, hasChanged)) files.push_back(std::move(loaded));
        }
        // Files that change all the time are shown as they were at the last look.
        if (!hasChanged || attempt == mostAttempts) return files;
        known.reset();
        rememberUIDs();
    }
}

std::shared_ptr<ICalendar::CalendarFile const>
FolderIndex::load(std::string const& name, Wanted const& wanted, std::int64_t now, bool& hasChanged) {
    auto const kept = parsed.find(name);
    if (kept != parsed.end()) {
        bool const isSame =
            wanted.stamp == 0 ? kept->second.round == round : kept->second.stamp == wanted.stamp;
        if (isSame) return kept->second.file;
    }
    auto const path = folder / name;
    if (!wanted.parts.empty() && wanted.stamp != 0) {
        auto const read = readParts(path, wanted.parts);
        if (read && stampOfFile(read->stamp) == wanted.stamp)
            return ICalendar::readExcerpt(wanted.parts, read->content, path.string());
    } else if (wanted.stamp != 0) {
        auto read = readRegularFile(path);
        if (read && stampOfFile(read->stamp) == wanted.stamp) {
            auto file = ICalendar::read(std::move(read->content), path.string());
            remember(name, wanted.stamp, file);
            return file;
        }
    }
    hasChanged = true;
    markStale(name);
    fresh.erase(name);
    auto read = this->read(name, now);
    if (!read) return nullptr;
    fresh.insert_or_assign(name, std::move(read->facts));
    return read->file;
}

// The files of the last question are those that the next one is likely to ask for.
void FolderIndex::forgetParsedBut(WantedFiles const& wanted) {
    std::erase_if(parsed, [&](auto const& entry) {
        bool const isForgotten = !wanted.contains(entry.first);
        if (isForgotten) parsedBytes -= entry.second.file->bytes->size();
        return isForgotten;
    });
}

} // namespace Platform

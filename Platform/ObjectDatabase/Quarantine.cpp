#include "Platform/ObjectDatabase/Quarantine.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>
#include <iterator>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include <fcntl.h>

namespace Platform::Quarantine {
namespace {

using std::filesystem::path;

constexpr std::string_view mark = "quarantined-";
constexpr std::size_t stampSize = std::string_view("20261121T114500Z-00-").size();

/// "20261121T114500Z", whose alphabetical order is that of the moments.
std::string momentText(Foundation::Date now) {
    auto const whole = std::chrono::sys_seconds(std::chrono::seconds(std::llround(now.secondsSince1970)));
    auto const day = std::chrono::floor<std::chrono::days>(whole);
    std::chrono::year_month_day const date(day);
    std::chrono::hh_mm_ss const time(whole - day);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d%02u%02uT%02d%02d%02dZ", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                  static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                  static_cast<int>(time.seconds().count()));
    return text.data();
}

bool belongsTo(std::string_view name, std::string_view database) {
    if (!name.starts_with(database)) return false;
    auto const rest = name.substr(database.size());
    return rest.empty() || rest.starts_with('.') || rest.starts_with('-');
}

std::set<std::string> namesIn(path const& folder) {
    std::set<std::string> names;
    std::error_code failure;
    for (std::filesystem::directory_iterator entry(folder, failure), end; !failure && entry != end;
         entry.increment(failure))
        names.insert(entry->path().filename());
    return names;
}

/// The stamp of a name in quarantine that belongs to the database; absent when it is none.
std::optional<std::string> stampOf(std::string_view name, std::string_view database) {
    if (!name.starts_with(mark) || name.size() < mark.size() + stampSize) return std::nullopt;
    if (!belongsTo(name.substr(mark.size() + stampSize), database)) return std::nullopt;
    return std::string(name.substr(mark.size(), stampSize));
}

/// The stamp after the last one given to a copy in the same second; absent when there are too many.
std::optional<std::string> newStamp(std::set<std::string> const& names, std::string_view database,
                                    Foundation::Date now) {
    auto const moment = momentText(now);
    int next = 0;
    for (auto const& name : names) {
        auto const stamp = stampOf(name, database);
        if (!stamp || !stamp->starts_with(moment)) continue;
        // Two digits, between hyphens.
        auto const digits = stamp->substr(moment.size() + 1, 2);
        next = std::max(next, (digits[0] - '0') * 10 + (digits[1] - '0') + 1);
    }
    if (next > 99) return std::nullopt;
    return moment + (next < 10 ? "-0" : "-") + std::to_string(next) + "-";
}

/// Best effort: an old copy too many harms nobody.
void prune(path const& folder, std::string_view database, std::string const& newest) {
    auto const names = namesIn(folder);
    std::set<std::string, std::greater<>> stamps;
    for (auto const& name : names) {
        if (auto stamp = stampOf(name, database)) stamps.insert(*std::move(stamp));
    }
    // Kept whatever the clock said then and says now.
    stamps.erase(newest);
    std::size_t kept = 1;
    for (auto const& stamp : stamps) {
        if (kept++ < keptCopies) continue;
        for (auto const& name : names) {
            std::error_code ignored;
            if (stampOf(name, database) == stamp) std::filesystem::remove_all(folder / name, ignored);
        }
    }
}

std::error_code moved(path const& from, path const& to) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return {};
    // Without that way the new name, which nobody has, is safe enough.
    if (errno == EINVAL || errno == ENOSYS) {
        if (::rename(from.c_str(), to.c_str()) == 0) return {};
    }
    return {errno, std::generic_category()};
}

} // namespace

std::error_code moveAside(DatabaseFile const& database, Foundation::Date now) {
    auto const folder = database.path().parent_path();
    auto const base = database.path().filename().string();
    auto const lock = database.lockPath().filename().string();
    auto const names = namesIn(folder);
    auto const stamp = newStamp(names, base, now);
    if (!stamp) return std::make_error_code(std::errc::file_exists);

    // The lock goes last: whoever waits for it must not begin while the others are on their way.
    std::vector<std::string> moving;
    std::ranges::copy_if(names, std::back_inserter(moving),
                         [&](auto const& name) { return belongsTo(name, base) && name != lock; });
    if (names.contains(lock)) moving.push_back(lock);
    for (auto const& name : moving) {
        auto const target = folder / (std::string(mark) + *stamp + name);
        if (auto const failed = moved(folder / name, target)) return failed;
    }
    if (auto const failed = database.syncFolder()) return failed;
    prune(folder, base, *stamp);
    return {};
}

std::vector<path> copies(path const& database) {
    auto const base = database.filename().string();
    std::vector<path> found;
    for (auto const& name : namesIn(database.parent_path())) {
        auto const isMain = name.size() == mark.size() + stampSize + base.size();
        if (isMain && stampOf(name, base)) found.push_back(database.parent_path() / name);
    }
    std::ranges::reverse(found);
    return found;
}

} // namespace Platform::Quarantine

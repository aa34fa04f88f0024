#pragma once

#include "Platform/EventStore/Folder/CalendarRootReader.h"
#include "Tests/EventStore/TemporaryFolder.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The events of a calendar whose files were all read.
class WholeCalendar {
public:
    WholeCalendar(std::filesystem::path const& folder, std::string const& name);

    [[nodiscard]] std::vector<std::string> answer(double from, double to,
                                                  std::string_view viewer = "UTC") const;

private:
    std::string name;
    std::optional<Platform::ICalendar::SeriesSet> series;
};

/// A root with calendar folders, and a place for its indexes.
class IndexedRoot {
public:
    static constexpr std::int64_t second = 1'000'000'000;

    /// Late enough for every stamp of a test to be trusted.
    static std::int64_t later();

    /// A reader as a new process would have it.
    [[nodiscard]] std::unique_ptr<Platform::CalendarRootReader> reader() const;
    /// One that takes for granted what was seen of folders of many files.
    [[nodiscard]] std::unique_ptr<Platform::CalendarRootReader> trustingReader() const;
    /// One that keeps its index in memory.
    [[nodiscard]] std::unique_ptr<Platform::CalendarRootReader> readerWithoutPlace() const;

    std::filesystem::path write(std::string const& name, std::string_view content) const {
        return root.write("calendars/" + name, content);
    }
    [[nodiscard]] std::filesystem::path operator/(std::string_view name) const {
        return root / "calendars" / name;
    }
    [[nodiscard]] std::filesystem::path indexes() const { return root / "cache/quillora/calendars"; }
    /// The one index that there is.
    [[nodiscard]] std::filesystem::path onlyIndex() const;
    /// The indexes, and whatever lies beside them, with their bytes.
    [[nodiscard]] std::map<std::filesystem::path, std::string> indexContents() const;

    /// A line for each event, whole, that a reader finds.
    static std::vector<std::string> answer(Platform::CalendarRootReader& reader, double from, double to,
                                           std::string_view viewer = "UTC", std::int64_t now = later());
    /// Gives the same answers from every file of the one calendar folder `name`, as they stand now.
    [[nodiscard]] WholeCalendar whole(std::string const& name) const;

    /// The titles of what happens in March 2026.
    static std::vector<std::string> titles(Platform::CalendarRootReader& reader, std::int64_t now = later());

private:
    TemporaryFolder root;
};

#pragma once

#include "Platform/Clock/FixedClock.h"
#include "Platform/Clock/FixedRegionSettings.h"
#include "Platform/EventStore/Folder/FolderEventStore.h"
#include "Platform/EventStore/GivenConsentPrompt.h"
#include "Platform/Files/PosixFileManager.h"
#include "Platform/Logging/RecordingLogSink.h"
#include "Tests/EventStore/Folder/SmallCalendars.h"
#include "Tests/EventStore/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>

/// A root "Root" in a folder of its own, and stores over it as other processes would open them.
class SavingFixture {
public:
    explicit SavingFixture(std::string zone = "UTC") : zone(std::move(zone)) {
        std::filesystem::create_directories(root());
        EXPECT_TRUE(Platform::CalendarStoreConfiguration(home / "config", files)
                        .add(root(), std::nullopt)
                        .has_value());
    }

    [[nodiscard]] std::filesystem::path root() const { return home / "Root"; }

    /// By default so late that whatever a killed process left is old; so is then what a living one uses.
    [[nodiscard]] std::unique_ptr<Platform::FolderEventStore>
    store(std::shared_ptr<Platform::Clock const> clock =
              std::make_shared<Platform::FixedClock>(Foundation::Date{4e9})) const {
        return std::make_unique<Platform::FolderEventStore>(Platform::FolderEventStoreParts{
            .places = {.configurationDirectory = home / "config", .nativeCalendar = home / "native"},
            .files = files,
            .region = std::make_shared<Platform::FixedRegionSettings>(
                Foundation::Calendar(Foundation::TimeZone::named(zone).value()),
                Foundation::Locale{.identifier = "en"}),
            .fileSystemClock = std::move(clock),
            .prompt = std::make_shared<Platform::GivenConsentPrompt>(Platform::ConsentAnswer::yes),
            .logger = Platform::Logger(std::make_shared<Platform::RecordingLogSink>(), "tests", "EventStore"),
        });
    }

    /// All files of the root with their contents, hidden ones as well.
    [[nodiscard]] std::map<std::string, std::string> contents() const {
        std::map<std::string, std::string> found;
        for (auto const& entry : std::filesystem::recursive_directory_iterator(root())) {
            if (!entry.is_regular_file()) continue;
            std::ifstream stream(entry.path(), std::ios::binary);
            found[entry.path().lexically_relative(root()).string()] = {std::istreambuf_iterator<char>(stream),
                                                                       {}};
        }
        return found;
    }

    std::string zone;
    TemporaryFolder home;
    std::shared_ptr<Platform::FileManager const> files =
        std::make_shared<Platform::PosixFileManager>(Foundation::Environment());
};

/// The events of March 2026, by start.
inline std::vector<Platform::EKEvent> marchEvents(Platform::EKEventStore& store) {
    auto events =
        store.eventsMatching({.start = {1772319600}, .end = {1774994400}, .calendars = std::nullopt});
    std::ranges::sort(events, {}, [](auto const& event) { return event.startDate->secondsSince1970; });
    return events;
}

inline Platform::EKEvent eventTitled(Platform::EKEventStore& store, std::string_view title) {
    for (auto const& event : marchEvents(store)) {
        if (event.title == title) return event;
    }
    ADD_FAILURE() << "no event titled " << title;
    return {};
}

inline std::vector<std::string> marchTitles(Platform::EKEventStore& store) {
    std::vector<std::string> titles;
    for (auto const& event : marchEvents(store))
        titles.push_back(event.title.value_or("untitled"));
    return titles;
}

/// The calendar of that title.
inline std::shared_ptr<Platform::EKCalendar const> calendarTitled(Platform::EKEventStore& store,
                                                                  std::string_view title) {
    for (auto const& calendar : store.calendarsForEntityType(Platform::EKEntityType::event)) {
        if (calendar.title == title) return std::make_shared<Platform::EKCalendar const>(calendar);
    }
    ADD_FAILURE() << "no calendar titled " << title;
    return nullptr;
}

/// An event of an hour at noon of 12 March 2026 in UTC, not saved yet.
inline Platform::EKEvent newEvent(Platform::EKEventStore& store, std::string_view calendar,
                                  std::string title) {
    auto event = store.makeEvent();
    event.calendar = calendarTitled(store, calendar);
    event.title = std::move(title);
    event.startDate = Foundation::Date{1773316800};
    event.endDate = Foundation::Date{1773320400};
    return event;
}

/// The text of what was refused.
inline std::string refusalOf(std::function<void()> const& change) {
    try {
        change();
    } catch (Platform::EKError const& error) {
        return error.what();
    }
    return "nothing was refused";
}

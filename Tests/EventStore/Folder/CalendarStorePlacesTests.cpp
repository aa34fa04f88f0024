#include "Platform/EventStore/Folder/CalendarStorePlaces.h"

#include "Platform/Files/InMemoryFileManager.h"

#include <gtest/gtest.h>

using namespace Platform;

TEST(CalendarStorePlacesTests, theConfigurationFolderFollowsTheEnvironment) {
    struct Row {
        char const* name;
        std::map<std::string, std::string, std::less<>> variables;
        std::optional<std::filesystem::path> configuration;
    };
    std::vector<Row> const rows{
        {"both set", {{"XDG_CONFIG_HOME", "/xdg"}, {"HOME", "/home/ann"}}, "/xdg/quillora"},
        {"home alone", {{"HOME", "/home/ann"}}, "/home/ann/.config/quillora"},
        {"relative", {{"XDG_CONFIG_HOME", "xdg"}, {"HOME", "/home/ann"}}, "/home/ann/.config/quillora"},
        {"empty", {{"XDG_CONFIG_HOME", ""}, {"HOME", "/home/ann"}}, "/home/ann/.config/quillora"},
        {"neither", {}, std::nullopt},
        {"home relative", {{"HOME", "ann"}}, std::nullopt},
    };
    InMemoryFileManager const files;
    for (auto const& row : rows) {
        auto const places = CalendarStorePlaces::of(Foundation::Environment(row.variables), files);
        EXPECT_EQ(places.has_value(), row.configuration.has_value()) << row.name;
        if (!places) continue;
        EXPECT_EQ(places->configurationDirectory, row.configuration) << row.name;
        EXPECT_EQ(places->nativeCalendar, "/data/Quillora/Calendars/quillora-native-calendar") << row.name;
    }
}

TEST(CalendarStorePlacesTests, withoutADataHomeThereAreNoPlaces) {
    InMemoryFileManager files;
    files.withoutApplicationSupport();
    EXPECT_FALSE(
        CalendarStorePlaces::of(Foundation::Environment({{"HOME", "/home/ann"}}), files).has_value());
}

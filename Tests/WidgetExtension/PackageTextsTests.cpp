#include "CalendarProviders/BundleFinder.h"
#include "Foundation/Environment.h"
#include "Meetings/Alarms/MeetAlarmModeEnum.h"
#include "Meetings/Alarms/MeetAlarmVoiceLanguageEnum.h"
#include "Meetings/BundleFinder.h"
#include "Platform/Resources/BundleTextProvider.h"
#include "Tests/WidgetExtension/FaceFixtures.h"
#include "WidgetExtension/ResourceBundleClass.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <string>
#include <string_view>

namespace {

// The bundles as the build lays them out beside the programs.
Platform::BundleTextProvider builtTexts(std::string_view bundle, std::string language) {
    return Platform::BundleTextProvider(
        std::string(bundle),
        Foundation::Environment({{"PACKAGE_RESOURCE_BUNDLE_PATH", QUILLORA_BUILD_DIR "/share/quillora"}}),
        Platform::BundlePlaces{
            .mainResources = std::nullopt, .packageResources = std::nullopt, .mainFolder = std::nullopt},
        {std::move(language)});
}

TEST(PackageTextsTests, theBundlesBearTheirPackagesNames) {
    EXPECT_EQ(Meetings::BundleFinder::bundleName, "Meetings_Meetings");
    EXPECT_EQ(CalendarProviders::BundleFinder::bundleName, "CalendarProviders_CalendarProviders");
}

TEST(PackageTextsTests, everyTextOfTheWidgetIsThereInBothLanguages) {
    auto const english = builtTexts(WidgetExtension::ResourceBundleClass::bundleName, "en");
    EXPECT_EQ(english.text("schedule-widget-display-name"), "Schedule");
    EXPECT_EQ(english.text("schedule-widget-description"), "The events of one day from your calendars.");
    EXPECT_EQ(english.text("schedule-widget-previous-day"), "Previous day");
    EXPECT_EQ(english.text("schedule-widget-next-day"), "Next day");
    EXPECT_EQ(english.text("schedule-widget-all-day"), "All day");
    EXPECT_EQ(english.text("schedule-widget-no-permission"), "No access to your calendars");
    EXPECT_EQ(english.text("schedule-widget-empty-state"), "No events");
    EXPECT_EQ(english.text("schedule-widget-more-events"), "+%lld more");

    auto const spanish = builtTexts(WidgetExtension::ResourceBundleClass::bundleName, "es");
    EXPECT_EQ(spanish.text("schedule-widget-display-name"), "Agenda");
    EXPECT_EQ(spanish.text("schedule-widget-description"), "Los eventos de un día de tus calendarios.");
    EXPECT_EQ(spanish.text("schedule-widget-previous-day"), "Día anterior");
    EXPECT_EQ(spanish.text("schedule-widget-next-day"), "Día siguiente");
    EXPECT_EQ(spanish.text("schedule-widget-all-day"), "Todo el día");
    EXPECT_EQ(spanish.text("schedule-widget-no-permission"), "Sin acceso a tus calendarios");
    EXPECT_EQ(spanish.text("schedule-widget-empty-state"), "Sin eventos");
    EXPECT_EQ(spanish.text("schedule-widget-more-events"), "+%lld más");
}

TEST(PackageTextsTests, theTextsOfMeetsAreThereInBothLanguages) {
    auto const english = builtTexts(Meetings::BundleFinder::bundleName, "en");
    EXPECT_EQ(english.text("eventkit-meet-untitled"), "Untitled");
    EXPECT_EQ(english.text("eventkit-meet-no-default-calendar"),
              "There is no calendar for new meets, so nothing was saved. Add a calendar that can be written "
              "to.");
    auto const spanish = builtTexts(Meetings::BundleFinder::bundleName, "es");
    EXPECT_EQ(spanish.text("eventkit-meet-untitled"), "Sin título");
    EXPECT_EQ(spanish.text("eventkit-meet-no-default-calendar"),
              "No hay ningún calendario para reuniones nuevas, así que no se guardó nada. Añade un "
              "calendario en el que se pueda escribir.");
}

TEST(PackageTextsTests, theTextsOfAlarmsAreThereInBothLanguages) {
    struct Row {
        std::string_view key;
        char const* english;
        char const* spanish;
    };
    using enum Meetings::MeetAlarmModeEnum;
    using enum Meetings::MeetAlarmVoiceLanguageEnum;
    auto const inEnglish = builtTexts(Meetings::BundleFinder::bundleName, "en");
    auto const inSpanish = builtTexts(Meetings::BundleFinder::bundleName, "es");
    for (auto const& row :
         {Row{.key = titleKey(voice), .english = "Spoken message", .spanish = "Mensaje hablado"},
          Row{.key = titleKey(hero), .english = "Hero", .spanish = "Hero"},
          Row{.key = titleKey(funk), .english = "Funk", .spanish = "Funk"},
          Row{.key = titleKey(spanish), .english = "Spanish", .spanish = "Español"},
          Row{.key = titleKey(english), .english = "English", .spanish = "Inglés"}}) {
        EXPECT_EQ(inEnglish.text(row.key), row.english);
        EXPECT_EQ(inSpanish.text(row.key), row.spanish);
    }
}

TEST(PackageTextsTests, everyBundleOpensWithoutProblems) {
    for (auto const name : {Meetings::BundleFinder::bundleName, CalendarProviders::BundleFinder::bundleName,
                            WidgetExtension::ResourceBundleClass::bundleName}) {
        for (auto const* language : {"en", "es"}) {
            EXPECT_TRUE(builtTexts(name, language).bundle().problems().empty()) << name << " " << language;
        }
    }
}

TEST(PackageTextsTests, theWidgetsAccentColourIsItsBrandInBothSchemes) {
    auto const texts = builtTexts(WidgetExtension::ResourceBundleClass::bundleName, "en");
    for (auto const scheme : {Platform::ColorScheme::light, Platform::ColorScheme::dark}) {
        auto view = WidgetExtension::viewOf({});
        view.colorScheme = scheme;
        auto const brand = view.brandColor();
        EXPECT_EQ(texts.bundle().color("AccentColor", scheme),
                  (std::array{brand.red, brand.green, brand.blue}));
    }
}

TEST(PackageTextsTests, theMarkersTellTheFileThatHoldsThePackagesCode) {
    auto const program = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    for (auto const* marker : {Meetings::BundleFinder::marker(), CalendarProviders::BundleFinder::marker(),
                               WidgetExtension::ResourceBundleClass::marker()}) {
        EXPECT_EQ(Platform::BundlePlaces::ofProcess(marker).packageResources, program);
    }
}

} // namespace

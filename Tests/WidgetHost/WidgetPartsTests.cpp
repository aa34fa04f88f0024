#include "Tests/Meetings/MeetFixtures.h"

#include "Tests/EventStore/TemporaryFolder.h"

#include "Applications/Watching/EntryChanges.h"
#include "Applications/Watching/WatchedPlaces.h"
#include "Applications/Widget/CalendarHealth.h"
#include "Applications/Widget/DayPresses.h"
#include "Applications/Widget/DesktopLooks.h"
#include "Applications/Widget/FaceContent.h"
#include "Applications/Widget/Notices.h"
#include "Foundation/DateFormatting.h"
#include "Foundation/Locale.h"
#include "Platform/Appearance/FixedAppearance.h"
#include "Platform/Clock/FixedClock.h"
#include "Platform/Files/InMemoryFileManager.h"
#include "Platform/HTMLReader/LibXMLHTMLReader.h"
#include "Platform/Resources/TableColorProvider.h"
#include "Platform/Resources/TableTextProvider.h"
#include "Platform/WidgetHost/CallingThreadMainExecutor.h"
#include "Platform/WidgetHost/LocalWidgetCenter.h"
#include "Platform/WidgetHost/QueuedMainLoop.h"
#include "Platform/WidgetHost/RecordingWidgetCenter.h"

#include <gtest/gtest.h>

#include <boost/asio/io_context.hpp>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <variant>
#include <vector>

namespace {

using Foundation::Calendar;
using Foundation::Date;
using Meetings::MeetEntity;
using Platform::EntryKind;
using Watching::WatchedPlace;
using WidgetExtension::ScheduleWidgetEntry;

Date moment(char const* text) {
    return Foundation::dateFromISO8601(text).value();
}

MeetEntity meet(char const* name, char const* start, double minutes) {
    auto made = Meetings::someMeet(name);
    made.metDate = moment(start);
    made.metDuration = minutes * 60;
    made.metLocation = std::nullopt;
    made.metDescription = "";
    return made;
}

MeetEntity allDay(char const* name, char const* start) {
    auto made = meet(name, start, 24 * 60);
    made.metIsAllDay = true;
    return made;
}

ScheduleWidgetEntry entryAt(char const* date, std::vector<MeetEntity> meetings) {
    return {.date = moment(date), .meetings = std::move(meetings), .hasAccessError = false, .dayOffset = 0};
}

std::string nextChangeText(ScheduleWidgetEntry const& entry, char const* now, Calendar const& calendar) {
    return Foundation::iso8601(Watching::nextChange(entry, moment(now), calendar));
}

TEST(EntryChangesTests, emptyDayChangesAtMidnightOfTheCalendar) {
    auto const entry = entryAt("2026-03-11T10:00:00Z", {});
    EXPECT_EQ(nextChangeText(entry, "2026-03-11T10:00:00Z", Meetings::utcCalendar()), "2026-03-12T00:00:00Z");
    EXPECT_EQ(nextChangeText(entry, "2026-03-11T10:00:00Z", Meetings::calendarIn("Asia/Tokyo")),
              "2026-03-11T15:00:00Z");
}

TEST(EntryChangesTests, midnightOfAShortDayAndOfOneThatBeginsAtOne) {
    EXPECT_EQ(nextChangeText(entryAt("2026-03-29T10:00:00Z", {}), "2026-03-29T00:30:00Z",
                             Meetings::calendarIn("Europe/Berlin")),
              "2026-03-29T22:00:00Z");
    EXPECT_EQ(nextChangeText(entryAt("2018-11-03T20:00:00Z", {}), "2018-11-03T20:00:00Z",
                             Meetings::calendarIn("America/Sao_Paulo")),
              "2018-11-04T03:00:00Z");
}

TEST(EntryChangesTests, endOfTheMeetThatEndsFirstComesBeforeMidnight) {
    auto const entry = entryAt("2026-03-11T10:00:00Z", {
                                                           meet("over", "2026-03-11T08:00:00Z", 60),
                                                           meet("long", "2026-03-11T09:00:00Z", 180),
                                                           meet("short", "2026-03-11T09:30:00Z", 45),
                                                       });
    EXPECT_EQ(nextChangeText(entry, "2026-03-11T10:00:00Z", Meetings::utcCalendar()), "2026-03-11T10:15:00Z");
    EXPECT_EQ(nextChangeText(entry, "2026-03-11T10:15:00Z", Meetings::utcCalendar()), "2026-03-11T12:00:00Z");
    EXPECT_EQ(nextChangeText(entry, "2026-03-11T12:00:00Z", Meetings::utcCalendar()), "2026-03-12T00:00:00Z");
}

TEST(EntryChangesTests, allDayMeetsAndMeetsPastMidnightDoNotCount) {
    auto const entry = entryAt("2026-03-11T10:00:00Z", {
                                                           allDay("all day", "2026-03-10T12:00:00Z"),
                                                           meet("night", "2026-03-11T22:00:00Z", 240),
                                                       });
    EXPECT_EQ(nextChangeText(entry, "2026-03-11T10:00:00Z", Meetings::utcCalendar()), "2026-03-12T00:00:00Z");
}

TEST(EntryChangesTests, meetsOfAnotherDaysPageDoNotEnd) {
    auto const tomorrow = entryAt("2026-03-12T10:00:00Z", {meet("early", "2026-03-11T23:00:00Z", 30)});
    EXPECT_EQ(nextChangeText(tomorrow, "2026-03-11T22:00:00Z", Meetings::utcCalendar()),
              "2026-03-12T00:00:00Z");
}

WidgetExtension::ScheduleWidgetView viewOf(ScheduleWidgetEntry entry, Platform::WidgetFamily family) {
    return {
        .entry = std::move(entry),
        .colorScheme = Platform::ColorScheme::light,
        .family = family,
        .calendar = Meetings::utcCalendar(),
        .now = moment("2026-03-11T10:00:00Z"),
        .locale = Foundation::Locale{.identifier = "en"},
        .texts = std::make_shared<Platform::TableTextProvider>(),
        .colors = std::make_shared<Platform::TableColorProvider>(),
    };
}

Widget::FaceContent contentOf(WidgetExtension::ScheduleWidgetView const& view, EntryKind kind) {
    Platform::CallingThreadMainExecutor main;
    return Widget::faceContent(view, kind, Platform::LibXMLHTMLReader(), main);
}

TEST(FaceContentTests, tooltipsTellTitleTimesPlaceAndTheFirstLineOfTheDescription) {
    auto review = meet("Design review of the quarterly roadmap", "2026-03-11T13:30:00Z", 60);
    review.metLocation = "Room 4";
    review.metDescription = "<p>---</p><p>Bring the <b>numbers</b></p>";
    auto const content =
        contentOf(viewOf(entryAt("2026-03-11T10:00:00Z", {allDay("Release week", "2026-03-11T00:00:00Z"),
                                                          review, meet("Call", "2026-03-11T23:00:00Z", 0)}),
                         Platform::WidgetFamily::systemLarge),
                  EntryKind::loaded);
    ASSERT_EQ(content.shown.tooltips.size(), content.shown.layout.rows.size());
    std::vector<std::string> told;
    for (std::size_t index = 0; index < content.shown.tooltips.size(); ++index) {
        auto const& row = content.shown.layout.rows[index];
        bool const isMeet =
            std::holds_alternative<Platform::BarRow>(row) || std::holds_alternative<Platform::CardRow>(row);
        EXPECT_EQ(content.shown.tooltips[index].empty(), !isMeet) << index;
        if (isMeet) {
            told.push_back(content.shown.tooltips[index]);
        }
    }
    EXPECT_EQ(
        told,
        (std::vector<std::string>{
            "Release week",
            "Design review of the quarterly roadmap\n01:30 p.m. – 02:30 p.m.\nRoom 4\nBring the numbers",
            "Call\n11:00 p.m.",
        }));
}

TEST(FaceContentTests, tooltipsMakeForeignTextsHarmless) {
    auto evil = meet("Pay\u202Ekcab\nnow", "2026-03-11T13:30:00Z", 0);
    evil.metLocation = "Room\x1B[2J";
    evil.metDescription = "<p>Call &#x202E;me</p>";
    auto const content =
        contentOf(viewOf(entryAt("2026-03-11T10:00:00Z", {evil}), Platform::WidgetFamily::systemLarge),
                  EntryKind::loaded);
    EXPECT_EQ(content.shown.tooltips.back(), "Pay\uFFFDkcab now\n01:30 p.m.\nRoom\uFFFD[2J\nCall \uFFFDme");
}

TEST(FaceContentTests, tooltipsKeepTheDirectionMarksOfTextsFromRightToLeft) {
    auto call = meet("\u200Fפגישה: C++\u200E", "2026-03-11T13:30:00Z", 0);
    call.metLocation = "Be\u00ADspre\u00ADchung\u200F 4";
    auto const content =
        contentOf(viewOf(entryAt("2026-03-11T10:00:00Z", {call}), Platform::WidgetFamily::systemLarge),
                  EntryKind::loaded);
    EXPECT_EQ(content.shown.tooltips.back(), "\u200Fפגישה: C++\u200E\n01:30 p.m.\nBesprechung 4");
}

TEST(FaceContentTests, endlessTitlesAndPlacesAreCut) {
    auto endless = meet(std::string(400'000, 'x').c_str(), "2026-03-11T13:30:00Z", 60);
    endless.metLocation = std::string(400'000, 'y');
    auto const content =
        contentOf(viewOf(entryAt("2026-03-11T10:00:00Z", {endless}), Platform::WidgetFamily::systemSmall),
                  EntryKind::loaded);
    EXPECT_EQ(content.shown.tooltips.at(1),
              std::string(500, 'x') + "…\n01:30 p.m. – 02:30 p.m.\n" + std::string(500, 'y') + "…");
}

TEST(WatchedPlacesTests, rootsPastTheMostAndRelativeOnesAreLeftOut) {
    TemporaryFolder const home;
    std::string sources = R"({"kind":"folder","id":"here","path":".","title":"Here"})";
    for (int number = 0; number < 600; ++number) {
        auto const path = home / std::to_string(number);
        std::filesystem::create_directory(path);
        sources += R"(,{"kind":"folder","id":"r)" + std::to_string(number) + R"(","path":")" + path.native() +
                   R"(","title":"Root"})";
    }
    auto const files = std::make_shared<Platform::InMemoryFileManager>();
    files->place("/config/calendar-store.json", R"({"version":1,"sources":[)" + sources + "]}");
    Platform::CalendarStoreConfiguration const configuration("/config", files);
    ASSERT_EQ(configuration.load().roots.size(), 601U);
    auto places = Watching::watchedPlaces(
        {.configurationDirectory = "/config", .nativeCalendar = home / "none"}, configuration);
    EXPECT_LE(places.size(), 1024U);
    std::erase_if(places, [](auto const& place) { return place.kind != WatchedPlace::Kind::calendars; });
    EXPECT_EQ(places.size(), 512U);
    EXPECT_EQ(places.front().folder, home / "0");
    EXPECT_EQ(places.back().folder, home / "511");
}

TEST(FaceContentTests, meetsWithOneIdentifierKeepTheirOwnTooltips) {
    auto const content =
        contentOf(viewOf(entryAt("2026-03-11T10:00:00Z", {meet("First", "2026-03-11T11:00:00Z", 30),
                                                          meet("Second", "2026-03-11T12:00:00Z", 30)}),
                         Platform::WidgetFamily::systemSmall),
                  EntryKind::loaded);
    ASSERT_EQ(content.shown.tooltips.size(), 3U);
    EXPECT_TRUE(content.shown.tooltips[1].starts_with("First\n"));
    EXPECT_TRUE(content.shown.tooltips[2].starts_with("Second\n"));
    ASSERT_EQ(content.meets.size(), 3U);
    EXPECT_FALSE(content.meets[0].has_value()) << "the header";
    EXPECT_EQ(content.meets[1]->metName, "First");
    EXPECT_EQ(content.meets[2]->metName, "Second");
}

TEST(FaceContentTests, placeholderDoesNotSayThatThereAreNoMeets) {
    auto const view = viewOf(entryAt("2026-03-11T10:00:00Z", {}), Platform::WidgetFamily::systemLarge);
    auto const placeholder = contentOf(view, EntryKind::placeholder);
    ASSERT_EQ(placeholder.shown.layout.rows.size(), 1U);
    EXPECT_TRUE(std::holds_alternative<Platform::HeaderRow>(placeholder.shown.layout.rows.front()));
    EXPECT_EQ(placeholder.shown.tooltips, std::vector<std::string>{""});
    EXPECT_EQ(contentOf(view, EntryKind::loaded).shown.layout.rows.size(), 2U);
}

class DayPressesTests : public testing::Test {
protected:
    static constexpr char const* offsetFile = "/container/scheduleWidgetDayOffset.json";

    std::shared_ptr<Platform::InMemoryFileManager> files = std::make_shared<Platform::InMemoryFileManager>();
    std::shared_ptr<Platform::RecordingWidgetCenter> center =
        std::make_shared<Platform::RecordingWidgetCenter>();
    boost::asio::io_context context;
    std::vector<std::int64_t> refused;
    std::vector<std::error_code> failures;
    Widget::DayPresses presses{Foundation::TaskExecutor(context.get_executor()), files, center,
                               [this](Widget::PressOutcome const& outcome) {
                                   if (outcome.refusedDay) refused.push_back(*outcome.refusedDay);
                                   if (outcome.notSaved) failures.push_back(outcome.notSaved->error);
                               }};
};

TEST_F(DayPressesTests, pressesMoveTheStoredDayOneAfterAnother) {
    presses.nextDay();
    presses.nextDay();
    presses.previousDay();
    EXPECT_EQ(files->content(offsetFile), std::nullopt);
    context.run();
    EXPECT_EQ(files->content(offsetFile), "1");
    EXPECT_EQ(center->reloadCount, 3);
}

TEST_F(DayPressesTests, todayStoresZeroAndReloads) {
    files->place(offsetFile, "25");
    presses.today();
    context.run();
    EXPECT_EQ(files->content(offsetFile), "0");
    EXPECT_EQ(center->reloadCount, 1);
}

TEST_F(DayPressesTests, pressThatCannotBeStoredStillReloadsAndIsToldOf) {
    files->failsAfter(0);
    presses.nextDay();
    presses.today();
    context.run();
    EXPECT_EQ(center->reloadCount, 2);
    EXPECT_EQ(failures.size(), 2U);
}

TEST_F(DayPressesTests, pressFromTheEndOfNumbersIsRefusedAndThereIsAWayBack) {
    for (auto const* const end : {"9223372036854775807", "-9223372036854775808"}) {
        files->place(offsetFile, end);
        (end[0] == '-' ? presses.previousDay() : presses.nextDay());
        context.run();
        context.restart();
        EXPECT_EQ(files->content(offsetFile), end);
    }
    EXPECT_EQ(refused, (std::vector{INT64_MAX, INT64_MIN}));
    EXPECT_EQ(center->reloadCount, 0);
    presses.nextDay();
    context.run();
    EXPECT_EQ(files->content(offsetFile), "-10") << "a step that can be made is made";
    EXPECT_EQ(refused.size(), 2U);
}

class CalendarHealthTests : public testing::Test {
protected:
    void placeSources(std::vector<std::filesystem::path> const& paths) {
        std::string sources;
        for (auto const& path : paths) {
            sources += std::string(sources.empty() ? "" : ",") + R"({"kind":"folder","id":"r)" +
                       std::to_string(sources.size()) + R"(","path":")" + path.native() +
                       R"(","title":"Root"})";
        }
        files->place("/config/calendar-store.json", R"({"version":1,"sources":[)" + sources + "]}");
    }

    void checkAt(char const* now) {
        clock->set(moment(now));
        health.check();
        context.run();
        context.restart();
        mainLoop.runPending();
    }

    TemporaryFolder const home;
    std::shared_ptr<Platform::InMemoryFileManager> files = std::make_shared<Platform::InMemoryFileManager>();
    std::shared_ptr<Platform::FixedClock> clock =
        std::make_shared<Platform::FixedClock>(moment("2026-03-11T08:00:00Z"));
    boost::asio::io_context context;
    Platform::QueuedMainLoop mainLoop;
    std::vector<std::optional<Widget::CalendarTrouble>> told;
    Widget::CalendarHealth health{std::make_shared<Platform::CalendarStoreConfiguration>("/config", files),
                                  Foundation::TaskExecutor(context.get_executor()), mainLoop, clock,
                                  [this](auto const& trouble) { told.push_back(trouble); }};
};

TEST_F(CalendarHealthTests, whatCanBeReadIsNotWorthAWord) {
    checkAt("2026-03-11T09:00:00Z");
    placeSources({home.path()});
    checkAt("2026-03-11T09:15:00Z");
    EXPECT_TRUE(told.empty());
}

TEST_F(CalendarHealthTests, aSourceThatGoesIsToldOnceWithItsAgeAndCauseAndSoIsItsReturn) {
    std::filesystem::create_directory(home / "source");
    placeSources({home.path(), home / "source"});
    checkAt("2026-03-11T09:00:00Z");
    std::filesystem::remove(home / "source");
    checkAt("2026-03-11T09:15:00Z");
    checkAt("2026-03-11T09:30:00Z");
    Widget::CalendarTrouble const gone{.path = (home / "source").native(),
                                       .cause = "No such file or directory",
                                       .lastRead = moment("2026-03-11T09:00:00Z")};
    EXPECT_EQ(told, (std::vector<std::optional<Widget::CalendarTrouble>>{gone}));
    std::filesystem::create_directory(home / "source");
    checkAt("2026-03-11T09:45:00Z");
    EXPECT_EQ(told, (std::vector<std::optional<Widget::CalendarTrouble>>{gone, std::nullopt}));
}

TEST_F(CalendarHealthTests, aDamagedListIsTroubleOfItsOwn) {
    files->place("/config/calendar-store.json", "{");
    checkAt("2026-03-11T09:00:00Z");
    ASSERT_EQ(told.size(), 1U);
    ASSERT_TRUE(told.front().has_value());
    EXPECT_EQ(told.front()->path, "/config/calendar-store.json");
    EXPECT_TRUE(told.front()->cause.starts_with("the list of calendar folders is damaged"));
    EXPECT_EQ(told.front()->lastRead, std::nullopt);
}

TEST(NoticesTests, eachIsALineOfItsOwn) {
    auto const calendar = Meetings::calendarIn("Asia/Kathmandu");
    Widget::Notices notices;
    EXPECT_EQ(notices.text(calendar), "");
    notices.calendarTrouble =
        Widget::CalendarTrouble{.path = "/a", .cause = "Permission denied", .lastRead = std::nullopt};
    EXPECT_EQ(notices.text(calendar), "Not all calendars could be read: /a: Permission denied");
    notices.calendarTrouble->lastRead = moment("2026-03-11T09:00:59Z");
    notices.lastPress.refusedDay = INT64_MAX;
    EXPECT_EQ(notices.text(calendar),
              "Not all calendars could be read since 2026-03-11 14:45: /a: Permission denied\n"
              "The stored day is 9223372036854775807 days from today, from where there is no further step; "
              "\"Today\" goes back.");
    notices = {.calendarTrouble = std::nullopt,
               .lastPress = {.refusedDay = std::nullopt,
                             .notSaved = Platform::WriteWitness::Failure{
                                 .path = "/home/day.json",
                                 .error = std::make_error_code(std::errc::read_only_file_system)}}};
    EXPECT_EQ(notices.text(calendar),
              "The day stays as it was, because it could not be saved: /home/day.json: "
              "Read-only file system");
}

class DesktopLooksTests : public testing::Test {
protected:
    /// Longer than any machine takes, so that the first answer is always there.
    static constexpr std::chrono::hours forever{1};

    std::shared_ptr<Platform::FixedAppearance> appearance =
        std::make_shared<Platform::FixedAppearance>(Platform::ColorScheme::dark, std::array{0.25, 0.5, 1.0});
    Platform::QueuedMainLoop mainLoop;
    int changes = 0;

    Widget::DesktopLooks looks(std::optional<Platform::ColorScheme> fixedScheme) {
        return Widget::DesktopLooks(appearance, fixedScheme, mainLoop, [this] { ++changes; }, forever);
    }
};

TEST_F(DesktopLooksTests, firstAnswerIsThereWhenItIsAskedFor) {
    auto asked = looks(std::nullopt);
    EXPECT_EQ(asked.colorScheme(), Platform::ColorScheme::dark);
    EXPECT_EQ(asked.accentColor(), (Platform::SRGBColor{.red = 0.25, .green = 0.5, .blue = 1}));
    EXPECT_EQ(changes, 0);
}

TEST_F(DesktopLooksTests, withoutADesktopItIsLight) {
    appearance = std::make_shared<Platform::FixedAppearance>();
    auto asked = looks(std::nullopt);
    EXPECT_EQ(asked.colorScheme(), Platform::ColorScheme::light);
    EXPECT_EQ(asked.accentColor(), std::nullopt);
}

TEST_F(DesktopLooksTests, fixedSchemeStandsInForTheDesktops) {
    auto asked = looks(Platform::ColorScheme::light);
    EXPECT_EQ(asked.colorScheme(), Platform::ColorScheme::light);
}

/// A desktop that is still starting: it answers when the test lets it.
class SlowAppearance final : public Platform::Appearance {
public:
    [[nodiscard]] std::optional<Platform::ColorScheme> colorScheme() const override {
        mayAnswer.wait();
        return Platform::ColorScheme::dark;
    }
    [[nodiscard]] std::optional<std::array<double, 3>> accentColor() const override { return std::nullopt; }
    [[nodiscard]] std::optional<std::string> interfaceFont() const override { return std::nullopt; }

    std::promise<void> permission;

private:
    std::shared_future<void> mayAnswer{permission.get_future()};
};

void runUntilChanged(Platform::QueuedMainLoop& mainLoop, int const& changes) {
    while (changes == 0) {
        mainLoop.runPending();
        std::this_thread::yield();
    }
}

TEST_F(DesktopLooksTests, laterAnswerReplacesTheFirstAndIsToldOnce) {
    auto asked = std::make_unique<Widget::DesktopLooks>(
        appearance, std::nullopt, mainLoop, [&] { ++changes; }, forever);
    EXPECT_EQ(asked->colorScheme(), Platform::ColorScheme::dark);
    appearance->set(Platform::ColorScheme::light);
    asked->askAgain();
    runUntilChanged(mainLoop, changes);
    EXPECT_EQ(asked->colorScheme(), Platform::ColorScheme::light);
    mainLoop.runPending();
    EXPECT_EQ(changes, 1);
}

TEST_F(DesktopLooksTests, slowDesktopIsLightUntilItAnswers) {
    auto const slow = std::make_shared<SlowAppearance>();
    Widget::DesktopLooks asked(
        slow, std::nullopt, mainLoop, [&] { ++changes; }, std::chrono::milliseconds(1));
    EXPECT_EQ(asked.colorScheme(), Platform::ColorScheme::light);
    EXPECT_EQ(changes, 0);
    slow->permission.set_value();
    runUntilChanged(mainLoop, changes);
    EXPECT_EQ(asked.colorScheme(), Platform::ColorScheme::dark);
    EXPECT_EQ(changes, 1);
}

TEST(LocalWidgetCenterTests, requestFromAnyThreadWaitsForTheLoop) {
    Platform::QueuedMainLoop mainLoop;
    int reloads = 0;
    Platform::LocalWidgetCenter center(mainLoop, [&] { ++reloads; });
    std::thread([&] { center.reloadAllTimelines(); }).join();
    center.reloadAllTimelines();
    EXPECT_EQ(reloads, 0);
    mainLoop.runPending();
    EXPECT_EQ(reloads, 2);
}

} // namespace

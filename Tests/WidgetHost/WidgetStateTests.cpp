#include "LoopDriver.h"

#include "Applications/Widget/WidgetMemory.h"
#include "Applications/Widget/WidgetStateStore.h"
#include "Platform/Desktop/WindowPlace.h"
#include "Platform/Files/InMemoryFileManager.h"
#include "Platform/Logging/RecordingLogSink.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

using Platform::broughtOnScreen;
using Platform::ScreenArea;
using Platform::WidgetFamily;
using Platform::WindowPlace;
using Widget::WidgetState;
using Widget::WidgetStateStore;

constexpr ScreenArea laptop{.x = 0, .y = 0, .width = 1280, .height = 800};
constexpr ScreenArea besideIt{.x = 1280, .y = -200, .width = 1920, .height = 1080};

TEST(WindowPlaceTests, aWindowIsBroughtToTheNearestPlaceThatShowsAllOfIt) {
    struct Row {
        char const* name;
        WindowPlace place;
        std::vector<ScreenArea> screens;
        WindowPlace expected;
    };
    for (auto const& row : {
             Row{"in the middle", {400, 300}, {laptop}, {400, 300}},
             Row{"exactly in the corner", {1080, 700}, {laptop}, {1080, 700}},
             Row{"a point too far", {1081, 701}, {laptop}, {1080, 700}},
             Row{"above and left", {-50, -2000}, {laptop}, {0, 0}},
             Row{"far away", {32767, -32768}, {laptop}, {1080, 0}},
             Row{"on the other screen", {2000, -150}, {laptop, besideIt}, {2000, -150}},
             Row{"on a screen that is gone", {2000, -150}, {laptop}, {1080, 0}},
             Row{"across two screens, more on the first", {1150, 100}, {laptop, besideIt}, {1080, 100}},
             Row{"across two screens, more on the second", {1250, 100}, {laptop, besideIt}, {1280, 100}},
             Row{"in the hole below the other screen", {1400, 900}, {laptop, besideIt}, {1400, 780}},
             Row{"no screen", {-5, 7}, {}, {-5, 7}},
         }) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(broughtOnScreen(row.place, 200, 100, row.screens), row.expected);
    }
}

TEST(WindowPlaceTests, ofAWindowThatIsTooLargeTheUpperLeftPartIsShown) {
    EXPECT_EQ(broughtOnScreen({.x = 300, .y = 300}, 2000, 100, {laptop}), (WindowPlace{.x = 0, .y = 300}));
    EXPECT_EQ(broughtOnScreen({.x = 1300, .y = 0}, 2000, 2000, {besideIt}),
              (WindowPlace{.x = 1280, .y = -200}));
}

class WidgetStateTests : public testing::Test {
protected:
    static constexpr char const* file = "/state/quillora/widget.json";

    [[nodiscard]] WidgetStateStore store() const {
        return {"/state/quillora", files, Platform::Logger(log, "test", "Widget")};
    }

    std::shared_ptr<Platform::InMemoryFileManager> files = std::make_shared<Platform::InMemoryFileManager>();
    std::shared_ptr<Platform::RecordingLogSink> log = std::make_shared<Platform::RecordingLogSink>();
};

TEST_F(WidgetStateTests, whatIsSavedIsLoaded) {
    struct Row {
        WidgetState state;
        char const* document;
    };
    for (auto const& row : {
             Row{{.family = WidgetFamily::systemSmall, .place = WindowPlace{.x = 40, .y = -60}},
                 R"({"version":1,"family":"small","place":{"x":40,"y":-60}})"},
             Row{{.family = WidgetFamily::systemMedium, .place = std::nullopt},
                 R"({"version":1,"family":"medium"})"},
             Row{{.family = std::nullopt, .place = WindowPlace{.x = 0, .y = 0}},
                 R"({"version":1,"place":{"x":0,"y":0}})"},
             Row{{.family = std::nullopt, .place = std::nullopt}, R"({"version":1})"},
         }) {
        SCOPED_TRACE(row.document);
        store().save(row.state);
        EXPECT_EQ(files->content(file), row.document);
        EXPECT_EQ(store().load(), row.state);
    }
    EXPECT_EQ(log->messages(), std::vector<std::string>{});
}

TEST_F(WidgetStateTests, withoutAFileThereIsNothingAndNothingToLog) {
    EXPECT_EQ(store().load(), WidgetState{});
    EXPECT_EQ(log->messages(), std::vector<std::string>{});
}

TEST_F(WidgetStateTests, membersOfALaterProgramAreNoDamage) {
    files->place(file, R"({"version":1,"opacity":0.5,"family":"large"})");
    EXPECT_EQ(store().load(), (WidgetState{.family = WidgetFamily::systemLarge, .place = std::nullopt}));
    EXPECT_EQ(log->messages(), std::vector<std::string>{});
}

TEST_F(WidgetStateTests, badOrForeignContentIsIgnoredLoggedAndLeftThere) {
    for (std::string const document : {
             "",
             "\xFF\xFE",
             "{",
             "[]",
             "{}",
             R"({"version":2,"family":"small"})",
             R"({"version":"1","family":"small"})",
             R"({"version":1,"family":"huge"})",
             R"({"version":1,"family":"extraLarge"})",
             R"({"version":1,"family":3})",
             R"({"version":1,"family":"small","place":{"x":1}})",
             R"({"version":1,"place":[1,2]})",
             R"({"version":1,"place":{"x":1.5,"y":2}})",
             R"({"version":1,"place":{"x":32768,"y":2}})",
             R"({"version":1,"place":{"x":0,"y":-99999999999999999999}})",
         }) {
        SCOPED_TRACE(document);
        auto const logged = log->records().size();
        files->place(file, document);
        EXPECT_EQ(store().load(), WidgetState{});
        ASSERT_EQ(log->records().size(), logged + 1);
        EXPECT_EQ(
            log->records().back(),
            (Platform::LogRecord{
                .level = Platform::LogLevel::error,
                .subsystem = "test",
                .category = "Widget",
                .message = "The widget's size and place were not taken from /state/quillora/widget.json, "
                           "which is damaged or of another version; the file stays until they change."}));
        EXPECT_EQ(files->content(file), document);
    }
}

TEST_F(WidgetStateTests, whatCannotBeReadOrWrittenIsLogged) {
    files->failsAfter(0);
    store().save({.family = WidgetFamily::systemSmall, .place = std::nullopt});
    files->place(file, R"({"version":1})");
    files->refusesReads();
    EXPECT_EQ(store().load(), WidgetState{});
    ASSERT_EQ(log->messages().size(), 2U);
    EXPECT_TRUE(log->messages()[0].starts_with(
        "The widget's size and place were not saved: /state/quillora/widget.json: "))
        << log->messages()[0];
    EXPECT_TRUE(log->messages()[1].starts_with(
        "The widget's size and place were not read: /state/quillora/widget.json: "))
        << log->messages()[1];
}

TEST_F(WidgetStateTests, theFolderIsInTheStateHome) {
    using Foundation::Environment;
    using Path = std::optional<std::filesystem::path>;
    EXPECT_EQ(Widget::stateFolder(Environment({{"XDG_STATE_HOME", "/s"}, {"HOME", "/h"}})),
              Path("/s/quillora"));
    EXPECT_EQ(Widget::stateFolder(Environment({{"XDG_STATE_HOME", "s"}, {"HOME", "/h"}})),
              Path("/h/.local/state/quillora"));
    EXPECT_EQ(Widget::stateFolder(Environment({{"XDG_STATE_HOME", ""}, {"HOME", ""}})), std::nullopt);
}

TEST_F(WidgetStateTests, aChosenFamilyIsWrittenAtOnceBesideThePlace) {
    files->place(file, R"({"version":1,"place":{"x":4,"y":5}})");
    {
        Widget::WidgetMemory memory(store(), [] { return std::optional<WindowPlace>(); });
        EXPECT_EQ(memory.state().place, (WindowPlace{.x = 4, .y = 5}));
        memory.familyWasChosen(WidgetFamily::systemMedium);
        memory.familyWasChosen(WidgetFamily::systemSmall);
        EXPECT_EQ(memory.state().family, WidgetFamily::systemSmall);
    }
    EXPECT_EQ(files->content(file), R"({"version":1,"family":"small","place":{"x":4,"y":5}})");
}

TEST_F(WidgetStateTests, whatWasRememberedAnywayIsNotWrittenAgain) {
    files->place(file, R"({"version":1,"family":"small","place":{"x":4,"y":5}})");
    {
        Widget::WidgetMemory memory(store(), [] { return std::optional(WindowPlace{.x = 4, .y = 5}); });
        memory.familyWasChosen(WidgetFamily::systemSmall);
        memory.windowMoved();
        memory.settle();
    }
    EXPECT_EQ(files->writeCount(file), 0U);
}

TEST_F(WidgetStateTests, aDragIsWrittenOnceTheWindowStandsStill) {
    WindowPlace place{.x = 0, .y = 0};
    int asked = 0;
    {
        Widget::WidgetMemory memory(store(), [&] {
            ++asked;
            return std::optional(place);
        });
        for (int step = 1; step <= 50; ++step) {
            place.x = step;
            memory.windowMoved();
        }
        EXPECT_EQ(asked, 0);
        EXPECT_TRUE(LoopDriver::runUntil([&] { return asked > 0; }));
    }
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(files->content(file), R"({"version":1,"place":{"x":50,"y":0}})");
    EXPECT_EQ(files->writeCount(file), 1U);
}

TEST_F(WidgetStateTests, theEndOfTheProgramDoesNotWaitForTheWindowToStandStill) {
    {
        Widget::WidgetMemory memory(store(), [] { return std::optional(WindowPlace{.x = 7, .y = 8}); });
        memory.windowMoved();
        memory.settle();
        memory.settle();
    }
    EXPECT_EQ(files->content(file), R"({"version":1,"place":{"x":7,"y":8}})");
    EXPECT_EQ(files->writeCount(file), 1U);
}

TEST_F(WidgetStateTests, withoutAStoreOrAPlaceNothingIsWritten) {
    {
        Widget::WidgetMemory placeless(store(), [] { return std::optional<WindowPlace>(); });
        placeless.windowMoved();
        placeless.settle();
        Widget::WidgetMemory forgetful(std::nullopt,
                                       [] { return std::optional(WindowPlace{.x = 7, .y = 8}); });
        forgetful.familyWasChosen(WidgetFamily::systemSmall);
        forgetful.windowMoved();
        forgetful.settle();
    }
    EXPECT_EQ(files->files(), std::vector<std::filesystem::path>{});
}

} // namespace

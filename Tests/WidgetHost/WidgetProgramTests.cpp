#include "WidgetProgramFixture.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

TEST_F(WidgetProgramTests, eachFamilyHasItsSizeAndShowsTheDay) {
    struct Row {
        char const* family;
        int width;
        int height;
    };
    for (auto const& row : {Row{.family = "small", .width = 170, .height = 170},
                            Row{.family = "medium", .width = 364, .height = 170},
                            Row{.family = "large", .width = 364, .height = 382}}) {
        SCOPED_TRACE(row.family);
        open({"--at", "2026-03-11T09:00", "--family", row.family});
        auto const shown = dayWith(wednesdayColor, thursdayColor);
        ASSERT_TRUE(shown.has_value());
        EXPECT_EQ(shown->width, row.width);
        EXPECT_EQ(shown->height, row.height);
        EXPECT_GT(shown->count(lightBrand), 50);
        EXPECT_GT(shown->count(0xFFFFFF), row.width * row.height / 2);
    }
}

TEST_F(WidgetProgramTests, schemeDarkIsDark) {
    open({"--at", "2026-03-11T09:00", "--scheme", "dark"});
    auto const shown = dayWith(wednesdayColor, thursdayColor);
    ASSERT_TRUE(shown.has_value());
    EXPECT_GT(shown->count(darkBrand), 50);
    EXPECT_GT(shown->count(0x000000), shown->width * shown->height / 2);
}

TEST_F(WidgetProgramTests, keysMoveTheDayAndStoreIt) {
    open();
    ASSERT_TRUE(showsWednesday());
    screen.press(title, "Right");
    EXPECT_TRUE(showsThursday());
    EXPECT_EQ(readFile(offsetFile()), "1");
    screen.press(title, "Prior");
    EXPECT_TRUE(showsWednesday());
    EXPECT_EQ(readFile(offsetFile()), "0");
    screen.press(title, "Next");
    EXPECT_TRUE(showsThursday());
    screen.press(title, "Home");
    EXPECT_TRUE(showsWednesday());
    EXPECT_EQ(readFile(offsetFile()), "0");
}

TEST_F(WidgetProgramTests, buttonsAnswerThePointerInAllOfTheirArea) {
    open();
    auto const before = dayWith(wednesdayColor, thursdayColor);
    ASSERT_TRUE(before.has_value());
    // The corner of the right button's area, well away from its sign.
    screen.pointAt(title, before->width - 14, 16);
    auto const hovered = screen.pictureWhen(title, [&](auto const& shown) { return shown != *before; });
    ASSERT_TRUE(hovered.has_value()) << "the button does not answer the pointer";
    screen.click();
    EXPECT_TRUE(showsThursday());
    EXPECT_EQ(readFile(offsetFile()), "1");
    screen.pointAt(title, 14, 16);
    screen.click();
    EXPECT_TRUE(showsWednesday());
    EXPECT_EQ(readFile(offsetFile()), "0");
}

TEST_F(WidgetProgramTests, buttonsAreReachedAndPressedByTheKeyboard) {
    open();
    ASSERT_TRUE(showsWednesday());
    // The left button has the focus from the start; Tab shows it on the right one.
    screen.press(title, "Tab");
    screen.press(title, "space");
    EXPECT_TRUE(showsThursday());
    screen.press(title, "Tab", "Shift_L");
    screen.press(title, "Return");
    EXPECT_TRUE(showsWednesday());
}

TEST_F(WidgetProgramTests, escapeDoesNothingAndControlQQuits) {
    open();
    ASSERT_TRUE(showsWednesday());
    screen.press(title, "Escape");
    screen.press(title, "Right");
    EXPECT_TRUE(showsThursday());
    screen.press(title, "q", "Control_L");
    EXPECT_EQ(widget->wait(), 0);
    EXPECT_EQ(widget->errorText(), "");
}

TEST_F(WidgetProgramTests, pressInAnotherProcessIsFollowedWithoutABus) {
    open();
    ASSERT_TRUE(showsWednesday());
    write(offsetFile(), "1");
    EXPECT_TRUE(showsThursday());
}

TEST_F(WidgetProgramTests, storedDayIsShownFromTheStart) {
    write(offsetFile(), "1");
    open();
    EXPECT_TRUE(showsThursday());
}

TEST_F(WidgetProgramTests, damagedPreferenceFilesShowToday) {
    for (std::string const content : {"", "{}", "3.5", "\xFF\xFE", "[1"}) {
        SCOPED_TRACE(content);
        write(offsetFile(), content);
        open();
        EXPECT_TRUE(showsWednesday());
    }
}

TEST_F(WidgetProgramTests, pressFromTheEndOfNumbersDoesNotEndIt) {
    write(offsetFile(), "9223372036854775807");
    open();
    ASSERT_TRUE(showsWednesday());
    screen.press(title, "Right");
    screen.press(title, "Home");
    // One after another: refused, back to today, one ahead.
    screen.press(title, "Right");
    EXPECT_TRUE(showsThursday());
    EXPECT_EQ(readFile(offsetFile()), "1");
}

TEST_F(WidgetProgramTests, hiddenCalendarLeavesAtOnce) {
    open();
    ASSERT_TRUE(showsWednesday());
    write(home / "data/group.quillora/hiddenCalendarIdentifiers.json", R"(["k3fa\/Wednesday"])");
    EXPECT_TRUE(screen
                    .pictureWhen(title,
                                 [](auto const& shown) {
                                     return shown.count(wednesdayColor) == 0 && shown.count(lightBrand) > 0;
                                 })
                    .has_value());
}

TEST_F(WidgetProgramTests, providerThatIsDisabledLeavesAtOnceAndComesBack) {
    auto const quillora = [&](std::vector<std::string> words) {
        words.insert(words.begin(), QUILLORA_BUILD_DIR "/bin/quillora");
        ChildProcess command(words, environment);
        EXPECT_EQ(command.wait(), 0) << command.errorText();
    };
    std::filesystem::remove(home / "data/group.quillora/enabledCalendarAccounts.json");
    open();
    auto const isEmptyFace = [](auto const& shown) {
        return shown.count(wednesdayColor) == 0 && shown.count(lightBrand) > 0;
    };
    ASSERT_TRUE(screen.pictureWhen(title, isEmptyFace).has_value());
    quillora({"setup", "--yes", "--keychain", "file"});
    EXPECT_TRUE(showsWednesday()) << "registered";
    quillora({"providers", "disable", "eventKit"});
    EXPECT_TRUE(screen.pictureWhen(title, isEmptyFace).has_value()) << "disabled";
    quillora({"providers", "enable", "eventKit"});
    EXPECT_TRUE(showsWednesday()) << "enabled";
    quillora({"providers", "remove", "eventKit"});
    EXPECT_TRUE(screen.pictureWhen(title, isEmptyFace).has_value()) << "removed";
}

TEST_F(WidgetProgramTests, accessThatIsTakenBackShowsNoMeets) {
    open();
    ASSERT_TRUE(showsWednesday());
    write(home / "config/quillora/calendar-access.json", "2");
    EXPECT_TRUE(screen.pictureWhen(title, [](auto const& shown) { return shown.count(wednesdayColor) == 0; })
                    .has_value());
}

TEST_F(WidgetProgramTests, calendarsThatOtherProgramsWriteAreFollowed) {
    open();
    ASSERT_TRUE(showsWednesday());
    addCalendar("Wednesday", "2E86AB", "20260311T100000", "20260311T110000");
    EXPECT_TRUE(showsThursday()) << "a colour file written in place";
    std::filesystem::remove(home / "calendars/Wednesday/event.ics");
    EXPECT_TRUE(dayWith(lightBrand, thursdayColor).has_value()) << "an event removed";
    addCalendar("New", "D1495B", "20260311T120000", "20260311T130000");
    EXPECT_TRUE(showsWednesday()) << "a calendar that was not there";
}

TEST_F(WidgetProgramTests, calendarsThatAreMovedAwayLeaveAndComeBack) {
    open();
    ASSERT_TRUE(showsWednesday());
    std::filesystem::rename(home / "calendars", home / "away");
    EXPECT_TRUE(dayWith(lightBrand, wednesdayColor).has_value()) << "gone";
    std::filesystem::rename(home / "away", home / "calendars");
    EXPECT_TRUE(showsWednesday()) << "back";
}

TEST_F(WidgetProgramTests, calendarsThatAreMadeLaterCome) {
    std::filesystem::rename(home / "calendars", home / "away");
    open();
    ASSERT_TRUE(dayWith(lightBrand, wednesdayColor).has_value());
    std::filesystem::create_directory(home / "calendars");
    std::filesystem::rename(home / "away/Wednesday", home / "calendars/Wednesday");
    EXPECT_TRUE(showsWednesday());
}

TEST_F(WidgetProgramTests, terminationIsACleanEnd) {
    for (int const number : {SIGTERM, SIGINT}) {
        open();
        widget->signal(number);
        EXPECT_EQ(widget->wait(), 0);
        EXPECT_EQ(widget->errorText(), "");
    }
}

TEST_F(WidgetProgramTests, quitAfterFirstFrameEnds) {
    open({"--at", "2026-03-11T09:00", "--quit-after-first-frame"});
    EXPECT_EQ(widget->wait(), 0);
}

TEST_F(WidgetProgramTests, withoutADisplayItSaysSo) {
    environment.erase("DISPLAY");
    ChildProcess failing(command({}), environment);
    EXPECT_EQ(failing.wait(), 1);
    EXPECT_EQ(failing.errorText(),
              "quillora-widget: There is no display to open the window on, so nothing is "
              "shown; \"quillora day\" prints the day.\n");
}

TEST_F(WidgetProgramTests, wrongUseChangesNothing) {
    ChildProcess failing(command({"--family", "huge"}), environment);
    EXPECT_EQ(failing.wait(), 2);
    EXPECT_EQ(failing.errorText(),
              "quillora-widget: There is no family \"huge\"; use small, medium or large.\n");
    EXPECT_FALSE(std::filesystem::exists(offsetFile()));
}

TEST_F(WidgetProgramTests, nothingIsWrittenButTheOffsetAndTheCache) {
    auto const filesIn = [](std::filesystem::path const& folder) {
        std::vector<std::string> names;
        for (auto const& entry : std::filesystem::recursive_directory_iterator(folder)) {
            if (entry.is_regular_file()) {
                names.push_back(entry.path().lexically_relative(folder));
            }
        }
        std::ranges::sort(names);
        return names;
    };
    auto before = filesIn(home);
    open();
    ASSERT_TRUE(showsWednesday());
    screen.press(title, "Right");
    ASSERT_TRUE(showsThursday());
    screen.press(title, "q", "Control_L");
    ASSERT_EQ(widget->wait(), 0);
    before.emplace_back("data/group.quillora/scheduleWidgetDayOffset.json");
    std::ranges::sort(before);
    auto after = filesIn(home);
    // What the cache holds, the index of the calendars and the fonts' own, may go at any time.
    std::erase_if(after, [](auto const& name) { return name.starts_with("cache/"); });
    EXPECT_EQ(after, before);
}

class WidgetConsentTests : public WidgetProgramTests {
protected:
    static constexpr char const* dialogTitle = "Quillora: calendar access";

    WidgetConsentTests() { std::filesystem::remove(record()); }

    [[nodiscard]] std::filesystem::path record() const {
        return home / "config/quillora/calendar-access.json";
    }
    [[nodiscard]] bool asks() const {
        return screen.pictureWhen(dialogTitle, [](auto const& shown) { return shown.width > 100; })
            .has_value();
    }
    [[nodiscard]] bool recordBecomes(std::string const& value) const {
        return screen.pictureWhen(title, [&](auto const&) { return readFile(record()) == value; })
            .has_value();
    }
    // The header's badge and a line, but no card of any calendar.
    [[nodiscard]] bool showsNoMeets() const {
        return screen
            .pictureWhen(title,
                         [](auto const& shown) {
                             return shown.count(lightBrand) > 50 && shown.count(wednesdayColor) == 0 &&
                                    shown.count(thursdayColor) == 0;
                         })
            .has_value();
    }
    [[nodiscard]] bool dialogIsGone() const {
        return screen
            .pictureWhen(title, [&](auto const&) { return !screen.picture(dialogTitle).has_value(); })
            .has_value();
    }
};

TEST_F(WidgetConsentTests, yesShowsTheDayAtOnceAndIsRecorded) {
    open();
    ASSERT_TRUE(asks());
    EXPECT_TRUE(showsNoMeets());
    EXPECT_FALSE(std::filesystem::exists(record()));
    screen.press(dialogTitle, "Tab");
    screen.press(dialogTitle, "space");
    EXPECT_TRUE(showsWednesday());
    EXPECT_EQ(readFile(record()), "3");
    EXPECT_TRUE(dialogIsGone());
}

TEST_F(WidgetConsentTests, noIsRecordedAndTheFaceStaysWithoutMeets) {
    open();
    ASSERT_TRUE(asks());
    screen.press(dialogTitle, "d", "Alt_L");
    EXPECT_TRUE(recordBecomes("2"));
    EXPECT_TRUE(dialogIsGone());
    EXPECT_TRUE(showsNoMeets());
}

TEST_F(WidgetConsentTests, theButtonsMoveTheDayWhileTheQuestionStands) {
    open();
    ASSERT_TRUE(asks());
    screen.press(title, "Right");
    EXPECT_TRUE(
        screen.pictureWhen(title, [&](auto const&) { return readFile(offsetFile()) == "1"; }).has_value());
    EXPECT_TRUE(asks());
    screen.press(dialogTitle, "a", "Alt_L");
    EXPECT_TRUE(showsThursday());
    EXPECT_EQ(readFile(record()), "3");
}

TEST_F(WidgetConsentTests, closingLeavesItUndecidedAndAsksNoMoreInThisRun) {
    open();
    ASSERT_TRUE(asks());
    screen.press(dialogTitle, "Escape");
    ASSERT_TRUE(dialogIsGone());
    auto const before = screen.picture(title);
    ASSERT_TRUE(before.has_value());
    // Each of these reads the day anew, which is what put the question the first time.
    screen.press(title, "Right");
    ASSERT_TRUE(screen.pictureWhen(title, [&](auto const& shown) { return shown != *before; }).has_value());
    EXPECT_TRUE(dialogIsGone());
    EXPECT_FALSE(std::filesystem::exists(record()));
    open(); // The next run asks again.
    EXPECT_TRUE(asks());
}

TEST_F(WidgetConsentTests, anAnswerGivenElsewhereTakesTheQuestionBack) {
    open();
    ASSERT_TRUE(asks());
    write(record(), "3");
    EXPECT_TRUE(showsWednesday());
    EXPECT_TRUE(dialogIsGone());
}

TEST_F(WidgetProgramTests, busThatTakesConnectionsAndSaysNothingKeepsNoWindowBack) {
    auto const path = home / "run/bus";
    int const listening = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ASSERT_LT(path.native().size(), sizeof address.sun_path);
    path.native().copy(static_cast<char*>(address.sun_path), path.native().size());
    ASSERT_EQ(bind(listening, reinterpret_cast<sockaddr*>(&address), sizeof address), 0); // NOLINT
    ASSERT_EQ(listen(listening, 8), 0);
    open({}); // Without --at, which asks no bus for another instance.
    EXPECT_TRUE(screen.pictureWhen(title, [](auto const& shown) { return shown.width == 364; }).has_value());
    close(listening);
}

class WidgetOnABusTests : public WidgetProgramTests {
protected:
    WidgetOnABusTests() : bus({"dbus-daemon", "--session", "--nofork", "--print-address=3"}, environment) {
        auto const address = bus.readLine();
        EXPECT_TRUE(address.has_value()) << bus.errorText();
        environment["DBUS_SESSION_BUS_ADDRESS"] = address.value_or("");
    }

    ChildProcess bus;
};

TEST_F(WidgetOnABusTests, secondStartHandsItsFamilyOver) {
    open({});
    ASSERT_TRUE(screen.pictureWhen(title, [](auto const& shown) { return shown.width == 364; }).has_value());
    ChildProcess second(command({"--family", "small"}), environment);
    EXPECT_EQ(second.wait(), 0) << second.errorText();
    EXPECT_TRUE(
        screen.pictureWhen(title, [](auto const& shown) { return shown.width == 170 && shown.height == 170; })
            .has_value());
}

TEST_F(WidgetOnABusTests, actionsOnTheBusMoveTheDay) {
    open({});
    auto const activate = [&](std::string const& action) {
        ChildProcess call({"gdbus", "call", "--session", "--dest", "com.zentorik.quillora.Widget",
                           "--object-path", "/com/zentorik/quillora/Widget", "--method",
                           "org.gtk.Actions.Activate", action, "[]", "{}"},
                          environment);
        EXPECT_EQ(call.wait(), 0) << call.errorText();
    };
    auto const storedDayIs = [&](std::string const& day) {
        return screen.pictureWhen(title, [&](auto const&) { return readFile(offsetFile()) == day; })
            .has_value();
    };
    activate("next");
    EXPECT_TRUE(storedDayIs("1"));
    activate("previous");
    EXPECT_TRUE(storedDayIs("0"));
    activate("previous");
    EXPECT_TRUE(storedDayIs("-1"));
    activate("today");
    EXPECT_TRUE(storedDayIs("0"));
    activate("quit");
    EXPECT_EQ(widget->wait(), 0);
}

#if defined(__SANITIZE_THREAD__)
constexpr bool isSlowedByThreadSanitizer = true;
#elif defined(__has_feature)
constexpr bool isSlowedByThreadSanitizer = __has_feature(thread_sanitizer);
#else
constexpr bool isSlowedByThreadSanitizer = false;
#endif

TEST_F(WidgetOnABusTests, meetThatIsAddedOnTheCommandLineIsShownAtOnce) {
    ChildProcess monitor(
        {"dbus-monitor", "--session", "type='signal',interface='com.zentorik.quillora.WidgetCenter'"},
        environment);
    ASSERT_TRUE(monitor.readLine().has_value()) << monitor.errorText(); // It listens from here on.
    open();
    ASSERT_TRUE(showsWednesday());
    ChildProcess add({QUILLORA_BUILD_DIR "/bin/quillora", "meet", "add", "--name", "Lunch", "--day",
                      "2026-03-11", "--start", "12:00", "--calendar", "k3fa/Thursday"},
                     environment);
    EXPECT_EQ(add.wait(), 0) << add.errorText();
    EXPECT_TRUE(screen
                    .pictureWhen(title,
                                 [](auto const& shown) {
                                     return shown.count(wednesdayColor) > 0 && shown.count(thursdayColor) > 0;
                                 })
                    .has_value());
    if (isSlowedByThreadSanitizer) {
        return; // The command gives the bus up before it has reached it.
    }
    // The widget watches the folder, too; those that cannot are told by the command itself.
    bool wasTold = false;
    while (!wasTold) {
        auto const line = monitor.readLine();
        if (!line) {
            break;
        }
        wasTold = line->contains("member=ReloadAllTimelines");
    }
    EXPECT_TRUE(wasTold);
}

TEST_F(WidgetOnABusTests, widgetOutlivesTheBus) {
    open({});
    auto const opening = screen.pictureWhen(title, [](auto const&) { return true; });
    ASSERT_TRUE(opening.has_value());
    bus.signal(SIGKILL);
    bus.wait();
    auto const isAnotherDay = [&](auto const& shown) { return shown != *opening; };
    write(offsetFile(), "4");
    EXPECT_TRUE(screen.pictureWhen(title, isAnotherDay).has_value());
    screen.press(title, "Right");
    EXPECT_TRUE(
        screen.pictureWhen(title, [&](auto const&) { return readFile(offsetFile()) == "5"; }).has_value());
    screen.press(title, "q", "Control_L");
    EXPECT_EQ(widget->wait(), 0);
}

} // namespace

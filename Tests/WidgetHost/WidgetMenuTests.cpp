#include "WidgetProgramFixture.h"

#include <filesystem>
#include <fstream>
#include <string>

// What the menu does in the program itself, worked by the keyboard.
namespace {

class WidgetMenuTests : public WidgetProgramTests {
protected:
    // Programs of the machine that the tests run on are no programs of this person.
    WidgetMenuTests() { environment["XDG_DATA_DIRS"] = home / "none"; }

    /// Opens the menu and chooses the entry that is so many above its end.
    void choose(int entriesFromTheEnd) const {
        screen.press(title, "F10", "Shift_L");
        ASSERT_TRUE(
            screen.pictureWhen(title, [&](auto const&) { return screen.windowCount() > 1; }).has_value());
        for (int entry = 0; entry < entriesFromTheEnd; ++entry) {
            screen.press(title, "Up");
        }
        screen.press(title, "Return");
    }
    void chooseCalendarProgram() const { choose(2); }

    /// `command` need not lead to a program.
    void giveCalendarProgram(std::string const& command) const {
        std::filesystem::create_directories(home / "data/applications");
        std::ofstream(home / "data/applications/planner.desktop")
            << "[Desktop Entry]\nType=Application\nName=Planner\nExec=" << command << " %U\n";
        std::ofstream(home / "config/mimeapps.list")
            << "[Default Applications]\ntext/calendar=planner.desktop\n";
    }
    [[nodiscard]] bool isTold(std::string const& titleOfIt) const {
        return screen.pictureWhen(titleOfIt, [](auto const& shown) { return shown.width > 100; }).has_value();
    }
};

TEST_F(WidgetMenuTests, theProgramForCalendarsIsOpenedWithNothing) {
    auto const program = home / "planner";
    std::ofstream(program) << "#!/bin/sh\necho \"$#\" > " << (home / ".started").native() << " && mv "
                           << (home / ".started").native() << " " << (home / "started").native() << "\n";
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    giveCalendarProgram(program.native());
    open();
    ASSERT_TRUE(showsWednesday());
    chooseCalendarProgram();
    EXPECT_TRUE(screen.pictureWhen(title, [&](auto const&) { return readFile(home / "started") == "0\n"; })
                    .has_value());
    EXPECT_FALSE(screen.picture("The calendar program did not open").has_value());
}

TEST_F(WidgetMenuTests, thatThereIsNoCalendarProgramIsTold) {
    open();
    ASSERT_TRUE(showsWednesday());
    chooseCalendarProgram();
    ASSERT_TRUE(isTold("No calendar program"));
    screen.press("No calendar program", "Escape");
    EXPECT_TRUE(
        screen
            .pictureWhen(title,
                         [&](auto const&) { return !screen.picture("No calendar program").has_value(); })
            .has_value());
    screen.press(title, "Right");
    EXPECT_TRUE(showsThursday()) << "the widget goes on";
}

TEST_F(WidgetMenuTests, aCalendarProgramThatWasTakenAwayIsAsNone) {
    giveCalendarProgram(home / "planner");
    open();
    ASSERT_TRUE(showsWednesday());
    chooseCalendarProgram();
    EXPECT_TRUE(isTold("No calendar program"));
}

} // namespace

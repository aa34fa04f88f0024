#include "WidgetProgramFixture.h"

#include <filesystem>
#include <fstream>
#include <string>

// Meets that are opened in the program itself.
namespace {

class WidgetMeetTests : public WidgetProgramTests {
protected:
    static constexpr char const* meetTitle =
        "Wednesday"; // Of the meet, and so of the window that tells of it.

    void pointAtTheMeet() const { screen.pointAt(title, 182, 60); }

    [[nodiscard]] bool opens() const {
        return screen.pictureWhen(meetTitle, [](auto const& shown) { return shown.width > 100; }).has_value();
    }
    [[nodiscard]] bool closes() const {
        return screen.pictureWhen(title, [&](auto const&) { return !screen.picture(meetTitle).has_value(); })
            .has_value();
    }

    /// Has the desktop open web links with a program that writes them down.
    void giveBrowser() const {
        auto const program = home / "browser";
        std::ofstream(program) << "#!/bin/sh\nprintf '%s' \"$1\" > " << (home / ".opened").native()
                               << " && mv " << (home / ".opened").native() << " " << openedLink().native()
                               << "\n";
        std::filesystem::permissions(program, std::filesystem::perms::owner_all);
        std::filesystem::create_directories(home / "data/applications");
        std::ofstream(home / "data/applications/browser.desktop")
            << "[Desktop Entry]\nType=Application\nName=Browser\nExec=" << program.native() << " %u\n";
        std::ofstream(home / "config/mimeapps.list")
            << "[Default Applications]\nx-scheme-handler/https=browser.desktop\n";
    }
    [[nodiscard]] std::filesystem::path openedLink() const { return home / "opened"; }
};

TEST_F(WidgetMeetTests, clickOnARowOpensItsMeetAndEscapeClosesIt) {
    open();
    ASSERT_TRUE(showsWednesday());
    pointAtTheMeet();
    screen.click();
    ASSERT_TRUE(opens());
    screen.press(meetTitle, "Escape");
    EXPECT_TRUE(closes());
    screen.press(title, "Right");
    EXPECT_TRUE(showsThursday()) << "the widget goes on";
}

TEST_F(WidgetMeetTests, keyboardOpensAMeetAndShowsWhereItIs) {
    open();
    auto const before = dayWith(wednesdayColor, thursdayColor);
    ASSERT_TRUE(before.has_value());
    screen.press(title, "Tab");
    screen.press(title, "Tab");
    ASSERT_TRUE(screen
                    .pictureWhen(title,
                                 [&](auto const& shown) {
                                     // Above the middle of the first card, on the background.
                                     return shown.at(182, 47) != before->at(182, 47);
                                 })
                    .has_value())
        << "no ring around the row";
    screen.press(title, "Return");
    EXPECT_TRUE(opens());
    screen.press(meetTitle, "c", "Alt_L");
    EXPECT_TRUE(closes());
}

TEST_F(WidgetMeetTests, aLinkGoesToTheBrowserAndTheWindowCloses) {
    giveBrowser();
    addCalendar("Wednesday", "D1495B", "20260311T100000", "20260311T110000",
                "URL:https://example.com/j/1?a=b\r\n");
    open();
    ASSERT_TRUE(showsWednesday());
    pointAtTheMeet();
    screen.click();
    ASSERT_TRUE(opens());
    EXPECT_FALSE(std::filesystem::exists(openedLink()));
    screen.press(meetTitle, "Tab", "Shift_L"); // From "Close" back to the link.
    screen.press(meetTitle, "space");
    EXPECT_TRUE(closes());
    EXPECT_TRUE(screen.pictureWhen(title, [&](auto const&) { return std::filesystem::exists(openedLink()); })
                    .has_value());
    EXPECT_EQ(readFile(openedLink()), "https://example.com/j/1?a=b");
}

TEST_F(WidgetMeetTests, aLinkThatCannotBeOpenedLeavesTheWindowAndSaysWhy) {
    std::ofstream(home / "config/mimeapps.list")
        << "[Removed Associations]\nx-scheme-handler/https=browser.desktop\n";
    environment["XDG_DATA_DIRS"] = home / "none";
    addCalendar("Wednesday", "D1495B", "20260311T100000", "20260311T110000",
                "URL:https://example.com/j/1\r\n");
    open();
    ASSERT_TRUE(showsWednesday());
    pointAtTheMeet();
    screen.click();
    ASSERT_TRUE(opens());
    auto const before = screen.picture(meetTitle);
    ASSERT_TRUE(before.has_value());
    screen.press(meetTitle, "Tab", "Shift_L");
    screen.press(meetTitle, "space");
    EXPECT_TRUE(
        screen.pictureWhen(meetTitle, [&](auto const& shown) { return shown.height > before->height; })
            .has_value());
}

TEST_F(WidgetMeetTests, rowsDragTheWindowAndOpenNothingThen) {
    open();
    ASSERT_TRUE(showsWednesday());
    auto const before = screen.origin(title);
    pointAtTheMeet();
    screen.drag(60, 40);
    EXPECT_TRUE(
        screen.pictureWhen(title, [&](auto const&) { return screen.origin(title) != before; }).has_value());
    EXPECT_FALSE(screen.picture(meetTitle).has_value());
    // Once it has moved it opens as before.
    pointAtTheMeet();
    screen.click();
    EXPECT_TRUE(opens());
}

TEST_F(WidgetMeetTests, aHostileTitleIsOpenedToo) {
    std::string const hostile = "<b>Bold</b> &amp; \x1B[2J %s " + std::string(10'000, 'x');
    std::ofstream(home / "calendars/Wednesday/event.ics")
        << "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:test\r\nBEGIN:VEVENT\r\nUID:hostile\r\nSUMMARY:" +
               hostile +
               "\r\nDTSTAMP:20260101T000000Z\r\nDTSTART:20260311T100000\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";
    open();
    ASSERT_TRUE(dayWith(wednesdayColor, thursdayColor).has_value());
    screen.press(title, "Tab");
    screen.press(title, "Tab");
    screen.press(title, "Return");
    EXPECT_TRUE(
        screen.pictureWhen(title, [&](auto const&) { return screen.windowCount() == 2; }).has_value());
    screen.press(title, "Right");
    EXPECT_TRUE(showsThursday());
    screen.press(title, "q", "Control_L");
    EXPECT_EQ(widget->wait(), 0);
    EXPECT_EQ(widget->errorText(), "");
}

} // namespace

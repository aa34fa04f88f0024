#include "WidgetProgramFixture.h"

#include "Tests/SessionBus/BusAtAPath.h"
#include "Tests/SessionBus/StubLogin.h"

#include <string>

// What the program shows while the session is locked.
namespace {

class WidgetLockTests : public WidgetProgramTests {
protected:
    static constexpr char const* meetTitle = "Wednesday";

    WidgetLockTests() {
        environment["DBUS_SYSTEM_BUS_ADDRESS"] = bus.address();
        // Of every day, since this program stands at the present.
        addCalendar("Wednesday", "D1495B", "20260311T100000", "20260311T110000", "RRULE:FREQ=DAILY\r\n");
    }

    /// The header, and below it nothing but the ground.
    [[nodiscard]] bool showsTheHeaderAlone() const {
        return screen
            .pictureWhen(title,
                         [](VirtualScreen::Picture const& shown) {
                             for (int y = 60; y < shown.height - 30; ++y) {
                                 for (int x = 30; x < shown.width - 30; ++x) {
                                     if (shown.at(x, y) != 0xFFFFFF) {
                                         return false;
                                     }
                                 }
                             }
                             return shown.count(lightBrand) > 50;
                         })
            .has_value();
    }
    [[nodiscard]] bool showsMeets() const {
        return screen.pictureWhen(title, [](auto const& shown) { return shown.count(wednesdayColor) > 0; })
            .has_value();
    }

    BusAtAPath bus;
};

TEST_F(WidgetLockTests, noMeetIsShownWhileTheSessionIsLocked) {
    StubLogin login(bus.address());
    open({});
    ASSERT_TRUE(showsMeets());
    login.setLocked(true);
    EXPECT_TRUE(showsTheHeaderAlone());
    // Another day is asked for, and answered, while it is locked.
    screen.press(title, "Right");
    EXPECT_TRUE(
        screen.pictureWhen(title, [&](auto const&) { return readFile(offsetFile()) == "1"; }).has_value());
    EXPECT_TRUE(showsTheHeaderAlone());
    // Nothing is there to be opened.
    screen.pointAt(title, 182, 60);
    screen.click();
    login.setLocked(false);
    EXPECT_TRUE(showsMeets());
    EXPECT_FALSE(screen.picture(meetTitle).has_value());
}

TEST_F(WidgetLockTests, aMeetThatIsOpenIsClosed) {
    StubLogin login(bus.address());
    open({});
    ASSERT_TRUE(showsMeets());
    screen.pointAt(title, 182, 60);
    screen.click();
    ASSERT_TRUE(
        screen.pictureWhen(meetTitle, [](auto const& shown) { return shown.width > 100; }).has_value());
    login.setLocked(true);
    EXPECT_TRUE(screen.pictureWhen(title, [&](auto const&) { return !screen.picture(meetTitle).has_value(); })
                    .has_value());
    EXPECT_TRUE(showsTheHeaderAlone());
}

TEST_F(WidgetLockTests, aSessionThatIsLockedFromTheStartShowsNoMeets) {
    StubLogin login(bus.address(), StubLogin::Sessions::one, true);
    open({});
    EXPECT_TRUE(showsTheHeaderAlone());
    login.setLocked(false);
    EXPECT_TRUE(showsMeets());
}

TEST_F(WidgetLockTests, aPictureOfAnotherMomentStaysAsItIs) {
    StubLogin login(bus.address(), StubLogin::Sessions::one, true);
    open();
    EXPECT_TRUE(showsWednesday());
}

} // namespace

#include "Platform/UserNotifications/SessionBusUserNotificationCenter.h"

#include "Tests/Platform/PrivateBus.h"
#include "Tests/UserNotifications/DesktopNotificationServer.h"
#include "Tests/WidgetHost/LoopDriver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// What a desktop's own server makes of our notifications, beyond what holds for every centre.
namespace {

using namespace Platform;
using Texts = std::vector<std::string>;

class DesktopNotificationTests : public testing::Test {
protected:
    DesktopNotificationTests() {
        center.onResponse([this](std::string const& notification, std::string const& action) {
            told.push_back(notification + " " + action);
        });
    }

    static UserNotification named(std::string identifier, std::string title) {
        return {.identifier = std::move(identifier),
                .title = std::move(title),
                .body = "",
                .actions = {{.identifier = "open", .title = "Open"},
                            {.identifier = "snooze", .title = "Snooze 5 minutes"},
                            {.identifier = "dismiss", .title = "Dismiss"}}};
    }

    // Yields why it could not be shown; an empty text if it is there.
    std::string outcomeOf(UserNotification notification) {
        std::optional<std::string> outcome;
        center.add(std::move(notification), [&](std::expected<void, std::string> const& result) {
            outcome = result ? "" : result.error();
        });
        EXPECT_TRUE(LoopDriver::runUntil([&] { return outcome.has_value(); }));
        return outcome.value_or("never told");
    }

    // Serves our side, too, until so many are on the screen.
    bool comesToScreen(std::size_t count) {
        auto const end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
        while (server.countOnScreen() != count && std::chrono::steady_clock::now() < end)
            LoopDriver::runPending();
        LoopDriver::runPending();
        return server.countOnScreen() == count;
    }

    PrivateBus bus;
    DesktopNotificationServer server{bus.address()};
    SessionBusUserNotificationCenter center{bus.address(), {.name = "Quillora", .desktopEntry = "q"}};
    Texts told;
};

TEST_F(DesktopNotificationTests, whatACalendarHoldsIsDrawnAsItStands) {
    auto notification = named("a", "<b>1 & 2</b> &amp; \"so\"");
    notification.body = "09:00\nRoom <4> & <a href='https://example.com'>5</a> &lt;";
    EXPECT_EQ(outcomeOf(notification), "");
    auto const shown = server.clearedAndRemembered();
    ASSERT_EQ(shown.size(), 1U);
    EXPECT_EQ(shown[0].application, "Quillora");
    EXPECT_EQ(shown[0].title, notification.title);
    EXPECT_EQ(shown[0].drawn,
              "<b>&lt;b&gt;1 &amp; 2&lt;/b&gt; &amp;amp; &quot;so&quot;</b>\n09:00\nRoom &lt;4&gt; "
              "&amp; &lt;a href=&apos;https://example.com&apos;&gt;5&lt;/a&gt; &amp;lt;");
    EXPECT_EQ(shown[0].millisecondsLeft, 0);
}

TEST_F(DesktopNotificationTests, whatWasChosenIsGoneFromTheScreen) {
    EXPECT_EQ(outcomeOf(named("a", "Stand-up")), "");
    EXPECT_EQ(outcomeOf(named("b", "Review")), "");
    ASSERT_TRUE(server.awaitOnScreen(2));
    for (auto const& [title, action] : {std::pair("Stand-up", "dismiss"), std::pair("Review", "snooze")}) {
        auto const before = server.countOnScreen();
        server.choose(title, action);
        EXPECT_TRUE(comesToScreen(before - 1)) << title;
    }
    EXPECT_EQ(told, (Texts{"a dismiss", "b snooze"}));
    // And comes again as one of its own, not as a second of the first.
    EXPECT_EQ(outcomeOf(named("b", "Review")), "");
    EXPECT_TRUE(server.awaitOnScreen(1));
    EXPECT_EQ(server.titlesClearedAndRemembered(), (Texts{"Stand-up", "Review", "Review"}));
}

TEST_F(DesktopNotificationTests, aPressChoosesTheFirstActionAndTakesItAway) {
    EXPECT_EQ(outcomeOf(named("a", "Stand-up")), "");
    ASSERT_TRUE(server.awaitOnScreen(1));
    server.press();
    EXPECT_TRUE(comesToScreen(0));
    EXPECT_EQ(told, Texts{"a open"});
}

TEST_F(DesktopNotificationTests, aServerThatComesBackIsUsedAgain) {
    EXPECT_EQ(outcomeOf(named("a", "Stand-up")), "");
    server.kill();
    EXPECT_NE(outcomeOf(named("b", "Lost")), "");
    server.start();
    EXPECT_EQ(outcomeOf(named("c", "Review")), "");
    ASSERT_TRUE(server.awaitOnScreen(1));
    server.choose("Review", "snooze");
    EXPECT_TRUE(LoopDriver::runUntil([this] { return !told.empty(); }));
    EXPECT_EQ(told, Texts{"c snooze"});
}

// A new server counts from one again: the number of something shown by the former is now another program's.
TEST_F(DesktopNotificationTests, whatAFormerServerShowedTakesNobodysPlace) {
    EXPECT_EQ(outcomeOf(named("a", "Stand-up")), "");
    auto const next = server.showForAnother("Chat");
    server.kill();
    server.start();
    while (server.showForAnother("Chat " + std::to_string(server.countOnScreen())) < next) {
    }
    auto const before = server.countOnScreen();
    EXPECT_EQ(outcomeOf(named("a", "Stand-up again")), "");
    EXPECT_TRUE(server.awaitOnScreen(before + 1));
    EXPECT_EQ(server.titlesClearedAndRemembered().back(), "Stand-up again");
}

} // namespace

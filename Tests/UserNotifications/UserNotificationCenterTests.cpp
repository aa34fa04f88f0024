#include "Platform/UserNotifications/RecordingUserNotificationCenter.h"
#include "Platform/UserNotifications/SessionBusUserNotificationCenter.h"

#include "Tests/Platform/PrivateBus.h"
#include "Tests/UserNotifications/DesktopNotificationServer.h"
#include "Tests/UserNotifications/StubNotificationServer.h"
#include "Tests/WidgetHost/LoopDriver.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace Platform;
using Texts = std::vector<std::string>;

UserNotification const standUp{
    .identifier = "a",
    .title = "Stand-up",
    .body = "09:00\nRoom <4> & 5",
    .actions = {{.identifier = "open", .title = "Open"}, {.identifier = "snooze", .title = "Snooze"}}};

// What the suite needs to know of an implementation beside the interface.
class World {
public:
    virtual ~World() = default;
    virtual UserNotificationCenter& center() = 0;
    /// Titles of what is on the screen, oldest first. Asked once, at the end.
    virtual Texts titlesOnScreen() = 0;
    virtual void choose(std::string const& title, std::string const& action) = 0;
    /// From now on nothing can be shown; yields what the reason then contains.
    virtual std::string refuse() = 0;
    virtual bool waitUntil(std::function<bool()> const& condition) = 0;
};

class StubWorld final : public World {
public:
    UserNotificationCenter& center() override { return notifications; }

    Texts titlesOnScreen() override {
        Texts titles;
        for (auto const& one : onScreen())
            titles.push_back(one.title);
        return titles;
    }
    void choose(std::string const& title, std::string const& action) override {
        for (auto const& one : onScreen())
            if (one.title == title) server.choose(one.number, action);
    }
    std::string refuse() override {
        server.refuse();
        return "the screen is full";
    }
    bool waitUntil(std::function<bool()> const& condition) override {
        return LoopDriver::runUntil(condition);
    }

private:
    std::vector<StubNotificationServer::Notification> onScreen() {
        std::vector<StubNotificationServer::Notification> left;
        for (auto const& one : server.shown()) {
            std::erase_if(left, [&](auto const& former) { return former.number == one.number; });
            left.push_back(one);
        }
        return left;
    }

    PrivateBus bus;
    StubNotificationServer server{bus.address(), {"actions", "body"}};
    SessionBusUserNotificationCenter notifications{bus.address(), {.name = "Test", .desktopEntry = "t"}};
};

class DesktopWorld final : public World {
public:
    UserNotificationCenter& center() override { return notifications; }
    Texts titlesOnScreen() override { return isServing ? server.titlesClearedAndRemembered() : Texts{}; }
    void choose(std::string const& title, std::string const& action) override {
        EXPECT_TRUE(server.awaitOnScreen(1)); // Its menu names what is there.
        server.choose(title, action);
    }
    std::string refuse() override {
        server.kill();
        isServing = false;
        return SessionBusUserNotificationCenter::serverName;
    }
    bool waitUntil(std::function<bool()> const& condition) override {
        return LoopDriver::runUntil(condition);
    }

private:
    PrivateBus bus;
    DesktopNotificationServer server{bus.address()};
    bool isServing = true;
    SessionBusUserNotificationCenter notifications{bus.address(), {.name = "Test", .desktopEntry = "t"}};
};

class FakeWorld final : public World {
public:
    UserNotificationCenter& center() override { return notifications; }
    Texts titlesOnScreen() override {
        Texts titles;
        for (auto const& one : notifications.shown)
            titles.push_back(one.title);
        return titles;
    }
    void choose(std::string const& title, std::string const& action) override {
        auto const onScreen = notifications.shown;
        for (auto const& one : onScreen)
            if (one.title == title) notifications.choose(one.identifier, action);
    }
    std::string refuse() override {
        notifications.failsWith("the screen is full");
        return "the screen is full";
    }
    bool waitUntil(std::function<bool()> const& condition) override { return condition(); }

private:
    RecordingUserNotificationCenter notifications;
};

struct Implementation {
    std::string name;
    std::unique_ptr<World> (*make)();

    friend void PrintTo(Implementation const& implementation, std::ostream* stream) {
        *stream << implementation.name;
    }
};

class UserNotificationCenterContractTests : public testing::TestWithParam<Implementation> {
protected:
    // Shows it, and yields why it could not be; an empty text if it is there.
    std::string outcomeOf(UserNotification notification) {
        std::optional<std::string> outcome;
        center.add(std::move(notification), [&](std::expected<void, std::string> const& result) {
            outcome = result ? "" : result.error();
        });
        EXPECT_TRUE(world->waitUntil([&] { return outcome.has_value(); }));
        return outcome.value_or("never told");
    }

    std::unique_ptr<World> world = GetParam().make();
    UserNotificationCenter& center = world->center();
};

INSTANTIATE_TEST_SUITE_P(
    , UserNotificationCenterContractTests,
    testing::Values(
        Implementation{"Stub", []() -> std::unique_ptr<World> { return std::make_unique<StubWorld>(); }},
        Implementation{"Desktop",
                       []() -> std::unique_ptr<World> { return std::make_unique<DesktopWorld>(); }},
        Implementation{"Fake", []() -> std::unique_ptr<World> { return std::make_unique<FakeWorld>(); }}),
    [](auto const& tested) { return tested.param.name; });

TEST_P(UserNotificationCenterContractTests, whatIsAddedIsShown) {
    EXPECT_EQ(outcomeOf(standUp), "");
    EXPECT_EQ(world->titlesOnScreen(), Texts{"Stand-up"});
}

TEST_P(UserNotificationCenterContractTests, oneOfTheSameIdentifierTakesThePlaceOfTheFormer) {
    EXPECT_EQ(outcomeOf(standUp), "");
    auto other = standUp;
    other.identifier = "b";
    other.title = "Other";
    EXPECT_EQ(outcomeOf(other), "");
    auto later = standUp;
    later.title = "Later";
    EXPECT_EQ(outcomeOf(later), "");
    EXPECT_EQ(world->titlesOnScreen(), (Texts{"Other", "Later"}));
}

TEST_P(UserNotificationCenterContractTests, aChosenActionIsToldOnce) {
    Texts told;
    center.onResponse([&](std::string const& notification, std::string const& action) {
        told.push_back(notification + " " + action);
    });
    EXPECT_EQ(outcomeOf(standUp), "");
    world->choose("Stand-up", "snooze");
    EXPECT_TRUE(world->waitUntil([&] { return !told.empty(); }));
    EXPECT_EQ(told, Texts{"a snooze"});
}

TEST_P(UserNotificationCenterContractTests, whyNothingCanBeShownIsTold) {
    auto const reason = world->refuse();
    EXPECT_NE(outcomeOf(standUp).find(reason), std::string::npos);
    EXPECT_EQ(world->titlesOnScreen(), Texts{});
}

// What the standard asks of a program.
class BusNotificationTests : public testing::Test {
protected:
    StubNotificationServer::Notification shownBy(std::vector<std::string> capabilities,
                                                 UserNotification const& notification) {
        server.emplace(bus.address(), std::move(capabilities));
        center.emplace(bus.address(),
                       NotifyingApplication{.name = "Quillora", .desktopEntry = "com.example.App"});
        center->add(notification, [this](auto const& outcome) { isShown = outcome.has_value(); });
        EXPECT_TRUE(LoopDriver::runUntil([this] { return isShown; }));
        auto const shown = server->shown();
        return shown.empty() ? StubNotificationServer::Notification{} : shown.front();
    }

    PrivateBus bus;
    std::optional<StubNotificationServer> server;
    std::optional<SessionBusUserNotificationCenter> center;
    bool isShown = false;
};

TEST_F(BusNotificationTests, aNotificationIsNamedUrgentSilentAndStays) {
    auto const shown = shownBy({"actions", "body"}, standUp);
    EXPECT_EQ(shown.application, "Quillora");
    EXPECT_EQ(shown.icon, "com.example.App");
    EXPECT_EQ(shown.title, "Stand-up");
    EXPECT_EQ(shown.body, "09:00\nRoom <4> & 5");
    EXPECT_EQ(shown.actions, (Texts{"default", "Open", "open", "Open", "snooze", "Snooze"}));
    EXPECT_EQ(shown.hints,
              (std::map<std::string, std::string>{
                  {"desktop-entry", "'com.example.App'"}, {"suppress-sound", "true"}, {"urgency", "0x02"}}));
    EXPECT_EQ(shown.timeout, 0);
}

TEST_F(BusNotificationTests, aServerThatReadsMarkupIsGivenNone) {
    EXPECT_EQ(shownBy({"body", "body-markup"}, standUp).body, "09:00\nRoom &lt;4&gt; &amp; 5");
}

TEST_F(BusNotificationTests, aServerWithoutActionsIsGivenNone) {
    EXPECT_EQ(shownBy({"body"}, standUp).actions, Texts{});
}

TEST_F(BusNotificationTests, whatACalendarHoldsIsMadeHarmless) {
    auto odd = standUp;
    odd.title = "a\nb\xFF\u202E";
    odd.body = "c\x01\n\nd";
    auto const shown = shownBy({"body"}, odd);
    EXPECT_EQ(shown.title, "a b\uFFFD\uFFFD");
    EXPECT_EQ(shown.body, "c\uFFFD\n\nd");
}

TEST_F(BusNotificationTests, directionMarksStayInTextsFromRightToLeft) {
    auto odd = standUp;
    odd.title = "\u200Fפגישה: C++\u200E";
    odd.body = "Be\u00ADspre\u00ADchung\u200F 4";
    auto const shown = shownBy({"body"}, odd);
    EXPECT_EQ(shown.title, odd.title);
    EXPECT_EQ(shown.body, "Besprechung 4");
}

TEST_F(BusNotificationTests, aPressOnTheNotificationItselfChoosesTheFirstAction) {
    auto const shown = shownBy({"actions"}, standUp);
    std::string told;
    center->onResponse([&](std::string const&, std::string const& action) { told = action; });
    server->choose(shown.number, "default");
    EXPECT_TRUE(LoopDriver::runUntil([&] { return !told.empty(); }));
    EXPECT_EQ(told, "open");
}

TEST_F(BusNotificationTests, whatBelongsToOthersOrIsGoneIsNotTold) {
    auto const shown = shownBy({"actions"}, standUp);
    Texts told;
    center->onResponse([&](std::string const& notification, std::string const& action) {
        told.push_back(notification + " " + action);
    });
    server->choose(shown.number + 7, "snooze");
    server->close(shown.number);
    server->choose(shown.number, "snooze");
    // What is told comes in order, so that the answer to a later notification comes after them.
    isShown = false;
    center->add(standUp, [this](auto const& outcome) { isShown = outcome.has_value(); });
    EXPECT_TRUE(LoopDriver::runUntil([this] { return isShown; }));
    server->choose(server->shown().back().number, "open");
    EXPECT_TRUE(LoopDriver::runUntil([&] { return !told.empty(); }));
    EXPECT_EQ(told, Texts{"a open"});
}

TEST_F(BusNotificationTests, withoutABusOrAServerTheReasonIsTold) {
    for (auto const& address : {std::optional<std::string>(), std::optional(bus.address())}) {
        SessionBusUserNotificationCenter lonely(address, {.name = "Q", .desktopEntry = "q"});
        std::optional<std::string> failure;
        lonely.add(standUp, [&](auto const& outcome) { failure = outcome ? "" : outcome.error(); });
        EXPECT_EQ(failure, std::nullopt);
        EXPECT_TRUE(LoopDriver::runUntil([&] { return failure.has_value(); }));
        EXPECT_NE(failure, "");
    }
}

TEST_F(BusNotificationTests, whatArrivesAfterItsEndIsDropped) {
    server.emplace(bus.address(), Texts{"actions"});
    bool isTold = false;
    center.emplace(bus.address(), NotifyingApplication{.name = "Q", .desktopEntry = "q"});
    center->add(standUp, [&](auto const&) { isTold = true; });
    center.reset();
    SessionBusUserNotificationCenter other(bus.address(), {.name = "Q", .desktopEntry = "q"});
    other.add(standUp, [this](auto const&) { isShown = true; });
    EXPECT_TRUE(LoopDriver::runUntil([this] { return isShown; }));
    EXPECT_FALSE(isTold);
}

} // namespace

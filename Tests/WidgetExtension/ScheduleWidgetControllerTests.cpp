#include "WidgetExtension/ScheduleWidgetController.h"

#include "Meetings/EventKit/EventKitMeetRepositoryError.h"
#include "Meetings/HiddenCalendarsStore.h"
#include "Platform/EventStore/FailingEventStore.h"
#include "Platform/NotificationCenter/RecordingNotificationCenter.h"
#include "Tests/WidgetExtension/WidgetFixtures.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace WidgetExtension {
namespace {

using DayMeetings = ScheduleWidgetController::DayMeetings;
using Meetings::EventKitMeetRepositoryError;
using Names = std::vector<std::string>;

DayMeetings const emptyDay = {.meetings = {}, .hasAccessError = false};
DayMeetings const deniedDay = {.meetings = {}, .hasAccessError = true};

class ScheduleWidgetControllerTests : public testing::Test {
protected:
    WidgetSurroundings around;

    DayMeetings dayWith(ScheduleWidgetServices services) {
        auto const now = around.clock->now();
        return Foundation::runTask(ScheduleWidgetController(std::move(services)).getTodaysMeetings(now));
    }
    DayMeetings today() { return dayWith(around.services()); }

    template <typename Error>
    DayMeetings dayAfter(Error error) {
        auto services = around.services();
        services.eventStore = [error]() -> std::shared_ptr<Meetings::EventKitStoring> { throw error; };
        return dayWith(std::move(services));
    }
};

TEST_F(ScheduleWidgetControllerTests, theMeetsOfTheDayComeEarliestFirst) {
    around.store->addEvent(namedEventAt(wednesday + 16 * hour, "late"));
    around.store->addEvent(namedEventAt(wednesday + day, "next midnight"));
    around.store->addEvent(namedEventAt(wednesday, "midnight"));
    auto const result = today();
    EXPECT_EQ(namesOf(result.meetings), (Names{"midnight", "late"}));
    EXPECT_FALSE(result.hasAccessError);
}

TEST_F(ScheduleWidgetControllerTests, withoutTheCalendarAccountTheDayIsEmptyAndNoStoreIsMade) {
    CalendarProviders::EnabledCalendarAccountsStore::save(*around.files, {});
    around.store->setAuthorizationStatus(Platform::EKAuthorizationStatus::denied);
    EXPECT_EQ(today(), emptyDay);
    EXPECT_EQ(around.storesMade, 0);
}

TEST_F(ScheduleWidgetControllerTests, withoutAnAccountsFileTheDayIsEmpty) {
    CalendarProviders::EnabledCalendarAccountsStore::clear(*around.files);
    around.store->addEvent(namedEventAt(wednesday, "unseen"));
    EXPECT_EQ(today(), emptyDay);
}

TEST_F(ScheduleWidgetControllerTests, deniedAccessIsTheOneAccessError) {
    around.store->setAuthorizationStatus(Platform::EKAuthorizationStatus::denied);
    EXPECT_EQ(today(), deniedDay);
}

TEST_F(ScheduleWidgetControllerTests, writeOnlyAccessIsAnAccessErrorToo) {
    around.store->setAuthorizationStatus(Platform::EKAuthorizationStatus::writeOnly);
    EXPECT_EQ(today(), deniedDay);
    EXPECT_EQ(around.store->accessRequests(), 0);
}

TEST_F(ScheduleWidgetControllerTests, everyOtherFailureIsAnEmptyDay) {
    EXPECT_EQ(dayAfter(EventKitMeetRepositoryError::accessDenied()), deniedDay);
    EXPECT_EQ(dayAfter(EventKitMeetRepositoryError::saveFailed("x")), emptyDay);
    EXPECT_EQ(dayAfter(EventKitMeetRepositoryError::eventNotFound()), emptyDay);
    EXPECT_EQ(dayAfter(std::runtime_error("no store")), emptyDay);
    EXPECT_EQ(dayAfter(42), emptyDay);
}

TEST_F(ScheduleWidgetControllerTests, aStoreThatCannotReadIsAnEmptyDay) {
    auto services = around.services();
    services.eventStore = [store = around.store] {
        return std::make_shared<Meetings::LiveEventKitStore>(
            std::make_shared<Platform::FailingEventStore>(store, "disk gone"));
    };
    EXPECT_EQ(dayWith(std::move(services)), emptyDay);
}

TEST_F(ScheduleWidgetControllerTests, eventsAreFetchedAsFarAsTheButtonsReach) {
    today();
    auto const now = around.clock->now();
    ASSERT_EQ(around.store->queries().size(), 1U);
    EXPECT_EQ(around.store->queries().front().start, now.addingTimeInterval(-10 * day));
    EXPECT_EQ(around.store->queries().front().end, now.addingTimeInterval(10 * day));
}

TEST_F(ScheduleWidgetControllerTests, hiddenCalendarsAreLeftOutAtOnce) {
    around.store->addEvent(namedEventAt(wednesday, "work"));
    EXPECT_EQ(namesOf(today().meetings), Names{"work"});
    Platform::RecordingNotificationCenter notifications;
    Meetings::HiddenCalendarsStore::save(*around.files, notifications, {"a1/work"});
    EXPECT_EQ(today(), emptyDay);
}

TEST_F(ScheduleWidgetControllerTests, theRepositoryLogsUnderItsOwnName) {
    today();
    ASSERT_FALSE(around.log->records().empty());
    EXPECT_EQ(around.log->records().front().category, "EventKitMeetRepositoryImpl");
}

} // namespace
} // namespace WidgetExtension

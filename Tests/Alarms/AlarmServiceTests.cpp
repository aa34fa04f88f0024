#include "AlarmFixtures.h"

#include "Meetings/Alarms/ArmedAlarmsStore.h"

#include <gtest/gtest.h>

namespace Alarms {
namespace {

using Rings = std::vector<std::string>;

std::string identifierOf(Meetings::MeetEntity const& meet) {
    return meet.metId.uuidString();
}

class AlarmServiceTests : public testing::Test {
protected:
    AlarmServiceTests() { world.meets = std::vector{standUp, review}; }

    [[nodiscard]] std::set<std::string> armed() const {
        return Meetings::ArmedAlarmsStore::load(*world.defaults);
    }

    Meetings::MeetEntity const standUp = meetAt("Stand-up", "2026-03-11T10:00:00Z");
    Meetings::MeetEntity const review = meetAt("Review", "2026-03-11T14:30:00Z");
    AlarmWorld world{"2026-03-11T09:00:00Z"};
};

TEST_F(AlarmServiceTests, everyAlarmRingsOnceAtItsTime) {
    world.start();
    world.runUntil("2026-03-11T09:59:59Z");
    EXPECT_EQ(world.takeRings(), Rings{});
    world.runUntil("2026-03-11T23:00:00Z");
    EXPECT_EQ(world.takeRings(), (Rings{"Stand-up 2026-03-11T10:00:00Z", "Review 2026-03-11T14:30:00Z"}));
    world.runUntil("2026-03-12T23:00:00Z");
    EXPECT_EQ(world.takeRings(), Rings{});
}

TEST_F(AlarmServiceTests, whatIsArmedIsRememberedUntilItHasRung) {
    world.start();
    EXPECT_EQ(armed(), (std::set{identifierOf(standUp), identifierOf(review)}));
    world.runUntil("2026-03-11T10:00:00Z");
    EXPECT_EQ(armed(), std::set{identifierOf(review)});
}

TEST_F(AlarmServiceTests, itSleepsUntilTheNextAlarmAndPlansAnewAfterTwelveHours) {
    world.start();
    EXPECT_EQ(world.timer.scheduled(), standUp.metDate);
    world.runUntil("2026-03-11T20:59:59Z");
    EXPECT_EQ(world.timer.scheduled(), moment("2026-03-11T21:00:00Z"));
    EXPECT_EQ(world.questions, 1);
    world.meets->push_back(meetAt("Breakfast", "2026-03-12T08:00:00Z"));
    world.runUntil("2026-03-12T08:00:00Z");
    EXPECT_EQ(world.takeRings().back(), "Breakfast 2026-03-12T08:00:00Z");
    EXPECT_EQ(world.questions, 2);
}

TEST_F(AlarmServiceTests, onlyTheNextTwentyFourHoursAreArmed) {
    auto const atTheEnd = meetAt("At the end", "2026-03-12T09:00:00Z");
    world.meets = std::vector{atTheEnd, meetAt("Beyond", "2026-03-12T09:00:01Z")};
    world.start();
    EXPECT_EQ(armed(), std::set{identifierOf(atTheEnd)});
    world.runUntil("2026-03-12T10:00:00Z");
    EXPECT_EQ(world.takeRings(), (Rings{"At the end 2026-03-12T09:00:00Z", "Beyond 2026-03-12T09:00:01Z"}));
}

TEST_F(AlarmServiceTests, onlyTimedMeetsOfAnnouncedCalendarsRing) {
    auto elsewhere = meetAt("Elsewhere", "2026-03-11T10:00:00Z");
    elsewhere.metCalendarIdentifier = "home";
    auto wholeDay = meetAt("Whole day", "2026-03-11T10:00:00Z");
    wholeDay.metIsAllDay = true;
    world.meets = std::vector{elsewhere, wholeDay};
    world.start();
    world.runUntil("2026-03-11T12:00:00Z");
    EXPECT_EQ(world.takeRings(), Rings{});
    EXPECT_EQ(armed(), std::set<std::string>{});
}

TEST_F(AlarmServiceTests, meetsThatBeginTogetherRingInTheOrderOfTheirNames) {
    world.meets = std::vector{meetAt("B", "2026-03-11T10:00:00Z"), meetAt("A", "2026-03-11T10:00:00Z")};
    world.start();
    world.runUntil("2026-03-11T11:00:00Z");
    EXPECT_EQ(world.takeRings(), (Rings{"A 2026-03-11T10:00:00Z", "B 2026-03-11T10:00:00Z"}));
}

TEST_F(AlarmServiceTests, aMeetThatHadBegunBeforeItWasArmedIsNotAnnounced) {
    world.clock.set(moment("2026-03-11T10:00:30Z"));
    world.start();
    EXPECT_EQ(world.takeRings(), Rings{});
    world.meets->push_back(meetAt("Sudden", "2026-03-11T10:00:00Z"));
    world.change();
    EXPECT_EQ(world.takeRings(), Rings{});
}

TEST_F(AlarmServiceTests, afterASleepALateAlarmRingsWithinFiveMinutesAndOlderOnesDoNot) {
    struct Row {
        char const* wokenAt;
        Rings rings;
    };
    for (auto const& row :
         {Row{.wokenAt = "2026-03-11T10:04:00Z", .rings = {"Stand-up 2026-03-11T10:04:00Z"}},
          Row{.wokenAt = "2026-03-11T10:05:00Z", .rings = {"Stand-up 2026-03-11T10:05:00Z"}},
          Row{.wokenAt = "2026-03-11T10:05:01Z", .rings = {}},
          Row{.wokenAt = "2026-03-11T14:31:00Z", .rings = {"Review 2026-03-11T14:31:00Z"}}}) {
        AlarmWorld sleeping("2026-03-11T09:00:00Z");
        sleeping.meets = std::vector{standUp, review};
        sleeping.start();
        sleeping.jumpTo(row.wokenAt);
        EXPECT_EQ(sleeping.takeRings(), row.rings) << row.wokenAt;
        sleeping.runUntil("2026-03-11T14:00:00Z");
        EXPECT_EQ(sleeping.takeRings(), Rings{}) << row.wokenAt;
    }
}

TEST_F(AlarmServiceTests, aSleepThatTheTimerEndsRingsOnTime) {
    world.start();
    // The kernel's timer wakes no machine, but one that is awake by then is told by the deadline alone.
    world.clock.set(moment("2026-03-11T10:00:01Z"));
    world.timer.wake(Platform::WallClockTimer::Wake::deadline);
    EXPECT_EQ(world.takeRings(), Rings{"Stand-up 2026-03-11T10:00:01Z"});
}

TEST_F(AlarmServiceTests, aClockThatIsSetBackRingsNothingTwice) {
    world.start();
    world.runUntil("2026-03-11T10:00:10Z");
    world.takeRings();
    world.jumpTo("2026-03-11T09:30:00Z");
    world.runUntil("2026-03-11T11:00:00Z");
    EXPECT_EQ(world.takeRings(), Rings{});
    world.runUntil("2026-03-11T15:00:00Z");
    EXPECT_EQ(world.takeRings(), Rings{"Review 2026-03-11T14:30:00Z"});
}

TEST_F(AlarmServiceTests, aClockThatIsSetBackAfterARestartRingsNothingTwice) {
    world.start();
    world.runUntil("2026-03-11T10:00:10Z");
    world.takeRings();
    world.clock.set(moment("2026-03-11T09:59:00Z"));
    world.start();
    world.runUntil("2026-03-11T11:00:00Z");
    EXPECT_EQ(world.takeRings(), Rings{});
}

TEST_F(AlarmServiceTests, aClockThatWasWrongForAWhileLosesNoAlarm) {
    world.start();
    world.jumpTo("2026-03-11T13:00:00Z");
    EXPECT_EQ(world.takeRings(), Rings{});
    world.jumpTo("2026-03-11T09:05:00Z");
    world.runUntil("2026-03-11T15:00:00Z");
    EXPECT_EQ(world.takeRings(), (Rings{"Stand-up 2026-03-11T10:00:00Z", "Review 2026-03-11T14:30:00Z"}));
}

TEST_F(AlarmServiceTests, aRestartRingsNothingAgain) {
    world.start();
    world.runUntil("2026-03-11T10:01:00Z");
    EXPECT_EQ(world.takeRings().size(), 1U);
    world.start();
    world.runUntil("2026-03-11T12:00:00Z");
    EXPECT_EQ(world.takeRings(), Rings{});
}

TEST_F(AlarmServiceTests, anAlarmThatWasMissedByARestartRingsIfItIsNotOld) {
    world.start();
    world.clock.set(moment("2026-03-11T10:02:00Z"));
    world.start();
    EXPECT_EQ(world.takeRings(), Rings{"Stand-up 2026-03-11T10:02:00Z"});
    world.start();
    EXPECT_EQ(world.takeRings(), Rings{});
}

TEST_F(AlarmServiceTests, aRestartAfterALongTimeIsSilent) {
    std::vector<Meetings::MeetEntity> many;
    for (int hour = 10; hour < 20; ++hour)
        many.push_back(meetAt("Hourly", "2026-03-11T" + std::to_string(hour) + ":00:00Z"));
    world.meets = many;
    world.start();
    world.clock.set(moment("2026-03-11T19:30:00Z"));
    world.start();
    world.runUntil("2026-03-11T23:00:00Z");
    EXPECT_EQ(world.takeRings(), Rings{});
    EXPECT_EQ(armed(), std::set<std::string>{});
}

TEST_F(AlarmServiceTests, aMeetThatIsMovedRingsAtItsNewTimeOnly) {
    world.start();
    world.meets = std::vector{meetAt("Stand-up", "2026-03-11T11:00:00Z")};
    world.change();
    world.runUntil("2026-03-11T12:00:00Z");
    EXPECT_EQ(world.takeRings(), Rings{"Stand-up 2026-03-11T11:00:00Z"});
}

TEST_F(AlarmServiceTests, aMeetThatIsDeletedOrNoLongerAnnouncedDoesNotRing) {
    world.start();
    world.meets = std::vector{review};
    world.change();
    EXPECT_EQ(armed(), std::set{identifierOf(review)});
    world.announced = {};
    world.change();
    EXPECT_EQ(armed(), std::set<std::string>{});
    world.runUntil("2026-03-11T15:00:00Z");
    EXPECT_EQ(world.takeRings(), Rings{});
}

TEST_F(AlarmServiceTests, anAlarmThatIsSnoozedRingsAgainAfterFiveMinutes) {
    world.start();
    world.runUntil("2026-03-11T10:00:30Z");
    world.takeRings();
    world.service->snooze(identifierOf(standUp));
    world.service->snooze(identifierOf(standUp));
    world.runUntil("2026-03-11T10:05:29Z");
    EXPECT_EQ(world.takeRings(), Rings{});
    world.runUntil("2026-03-11T12:00:00Z");
    EXPECT_EQ(world.takeRings(), Rings{"Stand-up 2026-03-11T10:05:30Z"});
}

TEST_F(AlarmServiceTests, aSnoozeOutlivesChangesAndARestart) {
    world.start();
    world.runUntil("2026-03-11T10:00:30Z");
    world.takeRings();
    world.service->snooze(identifierOf(standUp));
    world.change();
    world.start();
    world.runUntil("2026-03-11T12:00:00Z");
    EXPECT_EQ(world.takeRings(), Rings{"Stand-up 2026-03-11T10:05:30Z"});
    world.start();
    world.runUntil("2026-03-11T12:30:00Z");
    EXPECT_EQ(world.takeRings(), Rings{});
}

TEST_F(AlarmServiceTests, whatHasNotRungCannotBeSnoozed) {
    world.start();
    world.service->snooze(identifierOf(review));
    world.service->snooze("unknown");
    EXPECT_EQ(world.service->rungAlarm(identifierOf(review)), std::nullopt);
    world.runUntil("2026-03-11T12:00:00Z");
    EXPECT_EQ(world.takeRings(), Rings{"Stand-up 2026-03-11T10:00:00Z"});
    EXPECT_EQ(world.service->rungAlarm(identifierOf(standUp))->meet, standUp);
}

TEST_F(AlarmServiceTests, calendarsThatCannotBeReadForAWhileDisarmNothing) {
    world.start();
    world.meets = std::unexpected("the disk is away");
    world.change();
    EXPECT_EQ(world.reports, std::vector<std::string>{"the disk is away"});
    EXPECT_EQ(world.timer.scheduled(), moment("2026-03-11T09:15:00Z"));
    world.runUntil("2026-03-11T10:00:00Z");
    EXPECT_EQ(world.takeRings(), Rings{"Stand-up 2026-03-11T10:00:00Z"});
    EXPECT_EQ(armed(), std::set{identifierOf(review)});
}

TEST_F(AlarmServiceTests, alarmsRingWhileTheCalendarsAreBeingRead) {
    world.start();
    world.isSlow = true;
    world.change();
    world.runUntil("2026-03-11T10:00:00Z");
    EXPECT_EQ(world.takeRings(), Rings{"Stand-up 2026-03-11T10:00:00Z"});
}

TEST_F(AlarmServiceTests, whatAsksWhileTheCalendarsAreBeingReadIsAnsweredByOneMore) {
    world.start();
    world.isSlow = true;
    for (int time = 0; time < 5; ++time)
        world.change();
    EXPECT_EQ(world.questions, 2);
    std::exchange(world.waiting, {}).front()(world.meets);
    world.loop.runPending();
    EXPECT_EQ(world.questions, 3);
    std::exchange(world.waiting, {}).front()(world.meets);
    world.loop.runPending();
    EXPECT_EQ(world.questions, 3);
}

TEST_F(AlarmServiceTests, anAnswerAfterTheEndIsDropped) {
    world.isSlow = true;
    world.start();
    world.service.reset();
    world.waiting.front()(world.meets);
    EXPECT_EQ(world.loop.runPending(), 1U);
    EXPECT_FALSE(world.timer.hasHandler());
}

TEST_F(AlarmServiceTests, whatCannotBeRememberedIsReportedAndStillRings) {
    world.start();
    world.defaults->failsAfter(0);
    world.runUntil("2026-03-11T10:00:00Z");
    EXPECT_EQ(world.takeRings(), Rings{"Stand-up 2026-03-11T10:00:00Z"});
    ASSERT_FALSE(world.reports.empty());
    EXPECT_EQ(world.reports.front(),
              "the alarms that are armed could not be stored (No space left on device)");
    world.change();
    EXPECT_EQ(world.takeRings(), Rings{});
}

TEST(AlarmMemoryTests, snoozesAreStoredWithTheirMoments) {
    auto const defaults = std::make_shared<Platform::InMemoryUserDefaults>();
    AlarmMemory const memory(defaults);
    std::map<std::string, Foundation::Date> const until{{"a@b", {.secondsSince1970 = 1773223530.25}},
                                                        {"c", {.secondsSince1970 = -1}}};
    EXPECT_EQ(memory.setSnoozed(until), std::error_code());
    EXPECT_EQ(memory.snoozed(), until);
    EXPECT_EQ(defaults->stringArray("snoozedAlarms"),
              (std::vector<std::string>{"a@b@1773223530.25", "c@-1.0"}));
    ASSERT_EQ(defaults->setStringArray("snoozedAlarms", {"a", "b@", "c@x", "d@1 ", "e@2"}),
              std::error_code());
    EXPECT_EQ(memory.snoozed(), (std::map<std::string, Foundation::Date>{{"e", {.secondsSince1970 = 2}}}));
}

} // namespace
} // namespace Alarms

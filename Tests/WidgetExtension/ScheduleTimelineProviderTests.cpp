#include "WidgetExtension/ScheduleTimelineProvider.h"

#include "Tests/WidgetExtension/WidgetFixtures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace WidgetExtension {
namespace {

using Foundation::Date;
using Kind = Platform::InMemoryFileManager::Operation::Kind;
using Names = std::vector<std::string>;
using ScheduleTimeline = Platform::Timeline<ScheduleWidgetEntry>;

constexpr Platform::TimelineProviderContext small = {.family = Platform::WidgetFamily::systemSmall};
constexpr Platform::TimelineProviderContext large = {.family = Platform::WidgetFamily::systemLarge};

// Each question tells a later moment, a second each time.
class TickingClock final : public Platform::Clock {
public:
    explicit TickingClock(Date start) : next(start) {}
    [[nodiscard]] Date now() const override {
        next = next.addingTimeInterval(1);
        return next;
    }
    [[nodiscard]] Date last() const { return next; }

private:
    mutable Date next;
};

// A button is pressed while the provider, which has read the offset once, asks for the time.
class ClockDuringAPress final : public Platform::Clock {
public:
    ClockDuringAPress(Date moment, std::shared_ptr<Platform::InMemoryFileManager> files)
        : moment(moment),
          files(std::move(files)) {}
    [[nodiscard]] Date now() const override {
        files->place(offsetFile, "2");
        return moment;
    }

private:
    Date moment;
    std::shared_ptr<Platform::InMemoryFileManager> files;
};

class ScheduleTimelineProviderTests : public testing::Test {
protected:
    WidgetSurroundings around;

    ScheduleTimeline timelineWith(ScheduleWidgetServices services) {
        std::vector<ScheduleTimeline> answers;
        ScheduleTimelineProvider provider(std::move(services));
        provider.getTimeline(large, [&](ScheduleTimeline timeline) { answers.push_back(timeline); });
        around.context.restart();
        around.context.run();
        EXPECT_EQ(answers.size(), 1U);
        return answers.at(0);
    }
    ScheduleTimeline timeline() { return timelineWith(around.services()); }
    ScheduleWidgetEntry entry() { return timeline().entries.at(0); }
};

TEST_F(ScheduleTimelineProviderTests, thePlaceholderIsDatedNowAndEmptyAndReadsNothing) {
    around.setOffset("5");
    auto const historyBefore = around.files->history().size();
    ScheduleTimelineProvider provider(around.services());
    EXPECT_EQ(provider.placeholder(large),
              (ScheduleWidgetEntry{
                  .date = around.clock->now(), .meetings = {}, .hasAccessError = false, .dayOffset = 0}));
    EXPECT_EQ(around.files->history().size(), historyBefore);
    EXPECT_EQ(around.storesMade, 0);
}

TEST_F(ScheduleTimelineProviderTests, theDisplayDateKeepsTheTimeOfDay) {
    around.setOffset("-3");
    auto const shown = entry();
    EXPECT_EQ(shown.date, around.clock->now().addingTimeInterval(-3 * day));
    EXPECT_EQ(shown.dayOffset, -3);
}

TEST_F(ScheduleTimelineProviderTests, theDisplayDateKeepsTheTimeOfDayAcrossAChangeOfClocks) {
    around.region = std::make_shared<Platform::FixedRegionSettings>(Meetings::calendarIn("America/New_York"),
                                                                    Foundation::Locale{.identifier = "en"});
    around.clock->set({.secondsSince1970 = 1730570820}); // 2024-11-02 14:07
    around.setOffset("1");
    EXPECT_EQ(entry().date, (Date{.secondsSince1970 = 1730660820}));
}

TEST_F(ScheduleTimelineProviderTests, anOffsetWithoutADateShowsThePresentMoment) {
    around.setOffset("9223372036854775807");
    auto const shown = entry();
    EXPECT_EQ(shown.date, around.clock->now());
    EXPECT_EQ(shown.dayOffset, std::numeric_limits<std::int64_t>::max());
}

TEST_F(ScheduleTimelineProviderTests, aForeignOffsetShowsADayBeyondTheButtons) {
    around.setOffset("25");
    EXPECT_EQ(entry().date, around.clock->now().addingTimeInterval(25 * day));
}

TEST_F(ScheduleTimelineProviderTests, theOffsetNeverExpires) {
    around.setOffset("1");
    around.clock->set(around.clock->now().addingTimeInterval(day));
    EXPECT_EQ(entry().date, (Date{.secondsSince1970 = wednesday + 2 * day + 9 * hour + 30 * minute}));
}

TEST_F(ScheduleTimelineProviderTests, aTimelineIsOneEntryToBeAskedForAgainIn15Minutes) {
    around.clock->set({.secondsSince1970 = wednesday + 10 * hour});
    auto const answer = timeline();
    EXPECT_EQ(answer.entries.size(), 1U);
    EXPECT_EQ(answer.policy.afterDate, (Date{.secondsSince1970 = wednesday + 10 * hour + 15 * minute}));
}

TEST_F(ScheduleTimelineProviderTests, theReloadTimeCountsFromAFreshMoment) {
    auto const clock = std::make_shared<TickingClock>(Date{.secondsSince1970 = wednesday});
    auto services = around.services();
    services.clock = clock;
    auto const answer = timelineWith(std::move(services));
    EXPECT_EQ(answer.policy.afterDate, clock->last().addingTimeInterval(15 * minute));
    EXPECT_LT(answer.entries.at(0).date, clock->last());
}

TEST_F(ScheduleTimelineProviderTests, aMomentBeyondTheCalendarIsItsOwnReloadTime) {
    Date const end = {.secondsSince1970 = 253402300799};
    around.clock->set(end);
    EXPECT_EQ(timeline().policy.afterDate, end);
}

TEST_F(ScheduleTimelineProviderTests, aSnapshotIsTheSameEntryForEveryFamily) {
    around.setOffset("1");
    around.store->addEvent(namedEventAt(wednesday + day + hour, "tomorrow"));
    ScheduleTimelineProvider provider(around.services());
    std::vector<ScheduleWidgetEntry> answers;
    auto const keep = [&](ScheduleWidgetEntry answer) { answers.push_back(std::move(answer)); };
    provider.getSnapshot(small, keep);
    provider.getSnapshot(large, keep);
    around.context.run();
    ASSERT_EQ(answers.size(), 2U);
    EXPECT_EQ(namesOf(answers[0].meetings), Names{"tomorrow"});
    EXPECT_EQ(answers[0], answers[1]);
    EXPECT_EQ(answers[0], entry());
}

TEST_F(ScheduleTimelineProviderTests, aQuestionReturnsAtOnceAndIsAnsweredByTheExecutor) {
    ScheduleTimelineProvider provider(around.services());
    bool isAnswered = false;
    provider.getSnapshot(small, [&](ScheduleWidgetEntry const&) { isAnswered = true; });
    EXPECT_FALSE(isAnswered);
    around.context.run();
    EXPECT_TRUE(isAnswered);
}

TEST_F(ScheduleTimelineProviderTests, deniedAccessIsAnEntryToo) {
    around.store->setAuthorizationStatus(Platform::EKAuthorizationStatus::denied);
    auto const shown = entry();
    EXPECT_TRUE(shown.hasAccessError);
    EXPECT_TRUE(shown.meetings.empty());
}

TEST_F(ScheduleTimelineProviderTests, theOffsetIsReadTwiceAndThePreferencesOnceARequest) {
    around.setOffset("0");
    auto const before = around.files->history().size();
    timeline();
    auto const history = around.files->history();
    auto const reads = [&](std::filesystem::path const& path) {
        return std::count_if(history.begin() + static_cast<std::ptrdiff_t>(before), history.end(),
                             [&](auto const& each) { return each.kind == Kind::read && each.path == path; });
    };
    EXPECT_EQ(reads(offsetFile), 2);
    EXPECT_EQ(reads("/container/enabledCalendarAccounts.json"), 1);
    EXPECT_EQ(reads("/container/hiddenCalendarIdentifiers.json"), 1);
    EXPECT_EQ(history.size() - before, 4U);
}

TEST_F(ScheduleTimelineProviderTests, aPressBetweenTheTwoReadsGivesTheFirstOffsetAndTheSecondsDate) {
    around.setOffset("1");
    auto services = around.services();
    services.clock = std::make_shared<ClockDuringAPress>(around.clock->now(), around.files);
    auto const shown = timelineWith(std::move(services)).entries.at(0);
    EXPECT_EQ(shown.dayOffset, 1);
    EXPECT_EQ(shown.date, around.clock->now().addingTimeInterval(2 * day));
}

TEST_F(ScheduleTimelineProviderTests, theOutermostDayIsMissingWhatStartsAfterTheTimeOfTheRequest) {
    around.setOffset("10");
    around.store->addEvent(namedEventAt(wednesday + 10 * day + 9 * hour, "before the moment"));
    around.store->addEvent(namedEventAt(wednesday + 10 * day + 10 * hour, "after the moment"));
    EXPECT_EQ(namesOf(entry().meetings), Names{"before the moment"});
}

TEST_F(ScheduleTimelineProviderTests, theRegionIsThatOfTheRequest) {
    class MovingRegion final : public Platform::RegionSettings {
    public:
        [[nodiscard]] Foundation::Calendar currentCalendar() const override {
            return Meetings::calendarIn(zone.c_str());
        }
        [[nodiscard]] Foundation::Locale currentLocale() const override { return {.identifier = "en"}; }
        std::string zone = "UTC";
    };
    auto const region = std::make_shared<MovingRegion>();
    around.region = region;
    around.store->addEvent(namedEventAt(wednesday + 16 * hour, "7th in Tokyo"));
    EXPECT_EQ(namesOf(entry().meetings), Names{"7th in Tokyo"});
    region->zone = "Asia/Tokyo";
    EXPECT_EQ(namesOf(entry().meetings), Names{});
}

TEST_F(ScheduleTimelineProviderTests, aQuestionIsAnsweredWhenItsProviderIsGone) {
    around.store->addEvent(namedEventAt(wednesday, "kept"));
    auto provider = std::make_unique<ScheduleTimelineProvider>(around.services());
    std::optional<ScheduleTimeline> answer;
    provider->getTimeline(small, [&](ScheduleTimeline timeline) { answer = std::move(timeline); });
    provider.reset();
    around.context.run();
    ASSERT_TRUE(answer.has_value());
    EXPECT_EQ(namesOf(answer->entries.at(0).meetings), Names{"kept"});
}

TEST_F(ScheduleTimelineProviderTests, aQuestionIsDroppedWithTheExecutorThatWasToAnswerIt) {
    bool isAnswered = false;
    {
        WidgetSurroundings shortLived;
        ScheduleTimelineProvider provider(shortLived.services());
        provider.getSnapshot(small, [&](ScheduleWidgetEntry const&) { isAnswered = true; });
    }
    EXPECT_FALSE(isAnswered);
}

TEST_F(ScheduleTimelineProviderTests, theOffsetAndTheDateCanBeAskedForAlone) {
    around.setOffset("-2");
    ScheduleTimelineProvider const provider(around.services());
    EXPECT_EQ(provider.dayOffset(), -2);
    EXPECT_EQ(provider.displayDate(), around.clock->now().addingTimeInterval(-2 * day));
    around.setOffset("4");
    EXPECT_EQ(provider.dayOffset(), 4);
}

} // namespace
} // namespace WidgetExtension

#include "Meetings/MeetingsApplication.h"

#include "Meetings/InMemoryMeetRepository.h"
#include "Meetings/MeetValidationError.h"
#include "Tests/Meetings/MeetFixtures.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <stdexcept>
#include <string>

namespace Meetings {
namespace {

using Foundation::Date;
using Foundation::runTask;

constexpr double march6 = 1709683200; // 2024-03-06T00:00:00Z, a Wednesday.
constexpr double hour = 3600;
constexpr double day = 24 * hour;

std::vector<std::string> namesOn(Date date, std::vector<MeetEntity> meets, Foundation::Calendar calendar) {
    MeetingsApplication const application(std::make_shared<InMemoryMeetRepository>(std::move(meets)),
                                          std::move(calendar));
    std::vector<std::string> names;
    for (auto const& meet : runTask(application.fetchDailyMeets(date)))
        names.push_back(meet.metName);
    return names;
}

TEST(MeetingsApplicationTests, aDayHoldsItsOwnMeetsEarliestFirst) {
    EXPECT_EQ(namesOn({.secondsSince1970 = march6 + 14 * hour},
                      {meetAt(march6 + 16 * hour, "late"), meetAt(march6 + day, "next midnight"),
                       meetAt(march6, "midnight"), meetAt(march6 - 60, "23:59 before"),
                       meetAt(march6 + 9 * hour, "early")},
                      utcCalendar()),
              (std::vector<std::string>{"midnight", "early", "late"}));
}

TEST(MeetingsApplicationTests, aMeetThatOnlyRunsIntoTheDayIsNotOfTheDay) {
    auto meet = meetAt(march6 - 60, "night shift");
    meet.metDuration = 8 * hour;
    EXPECT_TRUE(namesOn({.secondsSince1970 = march6 + hour}, {meet}, utcCalendar()).empty());
}

TEST(MeetingsApplicationTests, anAllDayMeetIsOfTheDayOfItsStart) {
    auto today = meetAt(march6, "all day");
    today.metIsAllDay = true;
    auto yesterday = meetAt(march6 - day, "two days");
    yesterday.metIsAllDay = true;
    yesterday.metDuration = 2 * day;
    EXPECT_EQ(namesOn({.secondsSince1970 = march6 + hour}, {today, yesterday}, utcCalendar()),
              std::vector<std::string>{"all day"});
}

TEST(MeetingsApplicationTests, equalStartsKeepTheRepositorysOrder) {
    EXPECT_EQ(namesOn({.secondsSince1970 = march6},
                      {meetAt(march6 + hour, "1"), meetAt(march6, "a"), meetAt(march6 + hour, "2"),
                       meetAt(march6, "b"), meetAt(march6 + hour, "3"), meetAt(march6, "c")},
                      utcCalendar()),
              (std::vector<std::string>{"a", "b", "c", "1", "2", "3"}));
}

TEST(MeetingsApplicationTests, thousandsOfADayInReverseAreNoTrouble) {
    constexpr int count = 20'000;
    std::vector<MeetEntity> meets;
    for (int second = count; second > 0; --second)
        meets.push_back(meetAt(march6 + second, std::to_string(second)));
    auto const names = namesOn({.secondsSince1970 = march6}, std::move(meets), utcCalendar());
    ASSERT_EQ(names.size(), std::size_t{count});
    EXPECT_EQ(names.front(), "1");
    EXPECT_EQ(names.back(), "20000");
}

TEST(MeetingsApplicationTests, theDayIsThatOfTheCalendarsZone) {
    // 20:00 UTC on the 6th is the 7th in Tokyo.
    Date const evening = {.secondsSince1970 = march6 + 20 * hour};
    std::vector const meets = {meetAt(march6 + 16 * hour, "7th in Tokyo"), meetAt(march6 + hour, "6th")};
    EXPECT_EQ(namesOn(evening, meets, calendarIn("Asia/Tokyo")), std::vector<std::string>{"7th in Tokyo"});
}

TEST(MeetingsApplicationTests, aDayThatBeginsAtOneOClockHasNoEarlierMeets) {
    EXPECT_EQ(namesOn({.secondsSince1970 = 1541300400},
                      {meetAt(1541300399, "the 3rd"), meetAt(1541300400, "the 4th")},
                      calendarIn("America/Sao_Paulo")),
              std::vector<std::string>{"the 4th"});
}

TEST(MeetingsApplicationTests, aStartThatIsNotANumberLiesOnNoDayAndDoesNotDisturbTheOthers) {
    constexpr auto nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(namesOn({.secondsSince1970 = march6},
                      {meetAt(march6 + 2 * hour, "b"), meetAt(nan, "never"), meetAt(march6 + hour, "a"),
                       meetAt(std::numeric_limits<double>::infinity(), "never")},
                      utcCalendar()),
              (std::vector<std::string>{"a", "b"}));
}

TEST(MeetingsApplicationTests, aFailedFetchPassesOn) {
    auto const repository = std::make_shared<InMemoryMeetRepository>();
    repository->failWith(std::runtime_error("unreachable"));
    MeetingsApplication const application(repository, utcCalendar());
    EXPECT_THROW(runTask(application.fetchDailyMeets({.secondsSince1970 = march6})), std::runtime_error);
}

TEST(MeetingsApplicationTests, validMeetsReachTheRepository) {
    auto const repository = std::make_shared<InMemoryMeetRepository>();
    MeetingsApplication const application(repository, utcCalendar());
    EXPECT_EQ(runTask(application.createMeet(someMeet("new"))), someMeet("new"));
    EXPECT_EQ(runTask(application.editMeet(someMeet("edited"))), someMeet("edited"));
    EXPECT_EQ(repository->created, std::vector{someMeet("new")});
    EXPECT_EQ(repository->updated, std::vector{someMeet("edited")});
}

TEST(MeetingsApplicationTests, anInvalidMeetIsRefusedBeforeTheRepositoryIsTouched) {
    auto const repository = std::make_shared<InMemoryMeetRepository>();
    MeetingsApplication const application(repository, utcCalendar());
    EXPECT_THROW(runTask(application.createMeet(someMeet(" "))), MeetValidationError);
    EXPECT_THROW(runTask(application.editMeet(someMeet(" "))), MeetValidationError);
    EXPECT_TRUE(repository->created.empty());
    EXPECT_TRUE(repository->updated.empty());
}

TEST(MeetingsApplicationTests, aDeletedMeetIsNotValidated) {
    auto const repository = std::make_shared<InMemoryMeetRepository>();
    MeetingsApplication const application(repository, utcCalendar());
    runTask(application.deleteMeet(someMeet(" ")));
    EXPECT_EQ(repository->deleted, std::vector{someMeet(" ")});
}

TEST(MeetingsApplicationTests, aTaskEndsWellAfterItsApplicationIsGone) {
    auto const repository = std::make_shared<InMemoryMeetRepository>(std::vector{meetAt(march6, "a")});
    auto task = MeetingsApplication(repository, utcCalendar()).fetchDailyMeets({.secondsSince1970 = march6});
    EXPECT_EQ(runTask(std::move(task)).size(), 1U);
}

} // namespace
} // namespace Meetings

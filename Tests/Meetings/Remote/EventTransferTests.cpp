#include "Meetings/Remote/CreateEventRequestDTO.h"
#include "Meetings/Remote/EventResponseDTO.h"
#include "Meetings/Remote/MeetRecurrenceRemoteMapper.h"
#include "Meetings/Remote/MeetWeekdayCodeMapper.h"
#include "Meetings/Remote/UpdateEventRequestDTO.h"
#include "Meetings/StableIdentifier.h"
#include "Platform/Appearance/FixedAppearance.h"
#include "Tests/Meetings/MeetFixtures.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace Meetings;
namespace JSON = Foundation::JSON;
namespace Recurrence = MeetRecurrenceRemoteMapper;

TEST(MeetWeekdayCodeMapperTests, everyWeekdayHasItsCodeAndNothingElseDoes) {
    constexpr std::pair<std::int64_t, std::string_view> table[] = {
        {1, "sun"}, {2, "mon"}, {3, "tue"}, {4, "wed"}, {5, "thu"}, {6, "fri"}, {7, "sat"}};
    for (auto const& [number, code] : table) {
        EXPECT_EQ(MeetWeekdayCodeMapper::code(number), code);
        EXPECT_EQ(MeetWeekdayCodeMapper::weekday(code), number);
    }
    for (std::int64_t const number : {0, 8, -1})
        EXPECT_EQ(MeetWeekdayCodeMapper::code(number), std::nullopt);
    for (auto const* const code : {"", "Mon", "monday", "mo"}) {
        EXPECT_EQ(MeetWeekdayCodeMapper::weekday(code), std::nullopt) << code;
    }
}

TEST(MeetRecurrenceRemoteMapperTests, frequenciesMapBothWaysAndUnknownOnesToNone) {
    EXPECT_EQ(Recurrence::toRemoteRepeat(MeetRecurrenceFrequency::none), "never");
    EXPECT_EQ(Recurrence::toRemoteRepeat(MeetRecurrenceFrequency::daily), "every_day");
    EXPECT_EQ(Recurrence::toRemoteRepeat(MeetRecurrenceFrequency::weekly), "every_week");
    EXPECT_EQ(Recurrence::toRemoteRepeat(MeetRecurrenceFrequency::monthly), "every_month");
    EXPECT_EQ(Recurrence::toLocalFrequency("every_day"), MeetRecurrenceFrequency::daily);
    EXPECT_EQ(Recurrence::toLocalFrequency("every_week"), MeetRecurrenceFrequency::weekly);
    EXPECT_EQ(Recurrence::toLocalFrequency("every_month"), MeetRecurrenceFrequency::monthly);
    for (std::optional<std::string_view> const code :
         {std::optional<std::string_view>("never"), std::optional<std::string_view>("EVERY_DAY"),
          std::optional<std::string_view>(""), std::optional<std::string_view>()}) {
        EXPECT_EQ(Recurrence::toLocalFrequency(code), MeetRecurrenceFrequency::none);
    }
}

TEST(MeetRecurrenceRemoteMapperTests, weekdaysAreWrittenMondayFirst) {
    EXPECT_EQ(Recurrence::toRemoteCustomRepeat({1, 2}), "mon|sun");
    EXPECT_EQ(Recurrence::toRemoteCustomRepeat({1, 2, 3, 4, 5, 6, 7}), "mon|tue|wed|thu|fri|sat|sun");
    EXPECT_EQ(Recurrence::toRemoteCustomRepeat({}), "");
    EXPECT_EQ(Recurrence::toRemoteCustomRepeat({0, 6, 8}), "fri");
}

TEST(MeetRecurrenceRemoteMapperTests, unknownAndEmptyPiecesAreDropped) {
    using Weekdays = std::set<std::int64_t>;
    EXPECT_EQ(Recurrence::toLocalWeekdays("mon||fri|xyz"), (Weekdays{2, 6}));
    EXPECT_EQ(Recurrence::toLocalWeekdays(""), Weekdays{});
    EXPECT_EQ(Recurrence::toLocalWeekdays(std::nullopt), Weekdays{});
    EXPECT_EQ(Recurrence::toLocalWeekdays("|"), Weekdays{});
}

TEST(EventRequestTests, bothRequestsSendTheSevenKeysInOrder) {
    constexpr auto expected =
        R"({"evtTitle":"A\/B","evtSchedule":"2023-11-14T22:13:20Z","evtDurationMinutes":30,"evtHasAlarm":false,)"
        R"("evtDescription":"Notes","evtRepeat":"every_week","evtCustomRepeat":"mon|wed"})";
    EXPECT_EQ(JSON::serialize(CreateEventRequestDTO(someMeet("A/B")).encode()), expected);
    EXPECT_EQ(JSON::serialize(UpdateEventRequestDTO(someMeet("A/B")).encode()), expected);
}

TEST(EventRequestTests, minutesAreCut) {
    auto meet = someMeet();
    meet.metDuration = 90;
    EXPECT_EQ(CreateEventRequestDTO(meet).evtDurationMinutes, 1);
    meet.metDuration = 59;
    EXPECT_EQ(CreateEventRequestDTO(meet).evtDurationMinutes, 0);
    meet.metDuration = -90;
    EXPECT_EQ(CreateEventRequestDTO(meet).evtDurationMinutes, -1);
}

TEST(EventRequestDeathTests, aDurationThatIsNoNumberEndsTheProcess) {
    auto meet = someMeet();
    meet.metDuration = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EXIT(CreateEventRequestDTO{meet}, testing::KilledBySignal(SIGABRT), "");
}

constexpr std::string_view response =
    R"({"evtId":"e1","evtTitle":"T","evtSchedule":"2023-11-14T17:13:20-05:00","evtDurationMinutes":3e1,)"
    R"("evtDescription":"","evtRepeat":"every_week","evtCustomRepeat":"mon|sun"})";

std::expected<EventResponseDTO, JSON::DecodeFailure> decoded(std::string const& document) {
    return EventResponseDTO::decode(JSON::parse(document).value());
}

std::string with(std::string_view part, std::string_view replacement) {
    std::string text(response);
    auto const at = text.find(part);
    EXPECT_NE(at, std::string::npos);
    return text.replace(at, part.size(), replacement);
}

TEST(EventResponseDTOTests, becomesAMeetOfTheBackend) {
    auto const event = decoded(std::string(response));
    ASSERT_TRUE(event.has_value());
    MeetEntity const meet = event->toMeetEntity(Platform::FixedAppearance());
    MeetEntity const expected{
        .metId = StableIdentifier::uuid("e1"),
        .metName = "T",
        .metDate = {.secondsSince1970 = 1700000000},
        .metDescription = "",
        .metDuration = 1800,
        .metColor = {.hexValue = "#5CC2C6"},
        .metIsAllDay = false,
        .metLocation = std::nullopt,
        .metUrl = std::nullopt,
        .metCalendarName = "Quillora",
        .metCalendarIdentifier = "quillora-native-calendar",
        .metRecurrenceFrequency = MeetRecurrenceFrequency::weekly,
        .metRecurringWeekdays = {1, 2},
        .metOriginalIdentifier = "e1",
        .metSource = MeetSource::backend,
    };
    EXPECT_EQ(meet, expected);
}

TEST(EventResponseDTOTests, everyKeyIsRequired) {
    for (auto const* const key : {"evtId", "evtTitle", "evtSchedule", "evtDurationMinutes", "evtDescription",
                                  "evtRepeat", "evtCustomRepeat"}) {
        EXPECT_EQ(decoded(with(std::string("\"") + key + "\"", "\"other\"")),
                  std::unexpected(JSON::DecodeFailure::keyMissing))
            << key;
    }
    EXPECT_EQ(decoded(with(R"("evtTitle":"T")", R"("evtTitle":null)")),
              std::unexpected(JSON::DecodeFailure::keyMissing));
}

TEST(EventResponseDTOTests, aValueOfAnotherTypeFailsTheWhole) {
    for (auto const& document :
         {with(R"("T")", "3"), with("3e1", "3.5"), with("3e1", R"("30")"), with("-05:00", ""),
          with("-05:00", ".000Z"), with("2023-11-14T17:13:20-05:00", "9999-12-31T23:59:59-23:59"),
          with("2023-11-14T17:13:20-05:00", "0001-01-01T00:00:00+23:59"),
          with(R"("2023-11-14T17:13:20-05:00")", "1700000000")}) {
        EXPECT_EQ(decoded(document), std::unexpected(JSON::DecodeFailure::dataCorrupted)) << document;
    }
    EXPECT_EQ(decoded("[]"), std::unexpected(JSON::DecodeFailure::dataCorrupted));
}

TEST(EventResponseDTODeathTests, minutesThatOverflowEndTheProcess) {
    auto const event = decoded(with("3e1", "9223372036854775807"));
    ASSERT_TRUE(event.has_value());
    EXPECT_EXIT(static_cast<void>(event->toMeetEntity(Platform::FixedAppearance())),
                testing::KilledBySignal(SIGABRT), "");
}

} // namespace

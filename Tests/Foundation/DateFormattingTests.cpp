#include "Foundation/DateFormatting.h"

#include "Tests/Foundation/HostileLocale.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace {

using namespace Foundation;

Calendar calendarIn(std::string_view zone) {
    return Calendar(TimeZone::named(zone).value());
}

Date at(double seconds) {
    return {.secondsSince1970 = seconds};
}

TEST(ISO8601Tests, instantsAreWrittenInUTCWithTheFractionDroppedDownwards) {
    EXPECT_EQ(iso8601(at(1700000000)), "2023-11-14T22:13:20Z");
    EXPECT_EQ(iso8601(at(1700000000.999)), "2023-11-14T22:13:20Z");
    EXPECT_EQ(iso8601(at(0)), "1970-01-01T00:00:00Z");
    EXPECT_EQ(iso8601(at(-0.5)), "1969-12-31T23:59:59Z");
}

TEST(ISO8601Tests, offsetsOfEitherSpellingAreRead) {
    for (auto const* text :
         {"2023-11-14T22:13:20Z", "2023-11-14T17:13:20-05:00", "2023-11-14T17:13:20-0500"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(dateFromISO8601(text), at(1700000000));
    }
    EXPECT_EQ(dateFromISO8601("2023-11-15T03:58:20+05:45"), at(1700000000));
}

TEST(ISO8601Tests, everythingElseFails) {
    for (auto const* text : {"2023-11-14T17:13:20-05",
                             "2023-11-14T22:13:20.000Z",
                             "2023-11-14T22:13:20",
                             "2023-11-14",
                             "2023-11-14 22:13:20Z",
                             "20231114T221320Z",
                             "",
                             "1700000000",
                             " 2023-11-14T22:13:20Z",
                             "2023-11-14T22:13:20Z ",
                             "2023-11-14T22:13:20Zx",
                             "2023-13-14T22:13:20Z",
                             "2023-00-14T22:13:20Z",
                             "2023-11-14T24:00:00Z",
                             "2023-11-00T22:13:20Z",
                             "2023-02-30T22:13:20Z",
                             "2023-02-29T22:13:20Z",
                             "2023-11-14T22:13:60Z",
                             "2023-11-14T22:60:20Z",
                             "2023-11-14t22:13:20Z",
                             "2023-11-14T22:13:20z",
                             "0000-11-14T22:13:20Z",
                             "12023-11-14T22:13:20Z",
                             "-2023-11-14T22:13:20Z",
                             "2023-11-14T22:13:20+24:00",
                             "2023-11-14T22:13:20+05:60",
                             "2023-1-14T22:13:20Z"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(dateFromISO8601(text), std::nullopt);
    }
}

TEST(ISO8601Tests, anOffsetThatLeavesTheYearsOfTheCalendarFails) {
    EXPECT_EQ(dateFromISO8601("9999-12-31T23:59:59Z"), at(253402300799));
    EXPECT_EQ(dateFromISO8601("9999-12-31T23:59:59-00:01"), std::nullopt);
    EXPECT_EQ(dateFromISO8601("9999-12-31T23:59:59-23:59"), std::nullopt);
    EXPECT_EQ(dateFromISO8601("0001-01-01T00:00:00Z"), at(-62135596800));
    EXPECT_EQ(dateFromISO8601("0001-01-01T00:00:00+00:01"), std::nullopt);
    EXPECT_EQ(dateFromISO8601("0001-01-01T00:00:00+23:59"), std::nullopt);
}

TEST(MomentTests, aMomentWithoutOffsetLiesOnTheCalendarsClocks) {
    auto const madrid = calendarIn("Europe/Madrid");
    EXPECT_EQ(momentFromISO8601("2026-03-11T09:00", madrid), at(1773216000));
    EXPECT_EQ(momentFromISO8601("2026-03-11T09:00:30", madrid), at(1773216030));
    EXPECT_EQ(momentFromISO8601("2026-03-11T09:00:00Z", madrid), at(1773219600));
    EXPECT_EQ(momentFromISO8601("2026-03-11T09:00Z", madrid), at(1773219600));
    EXPECT_EQ(momentFromISO8601("2026-03-11T05:00-04:00", madrid), at(1773219600));
    EXPECT_EQ(momentFromISO8601("2026-03-11", madrid), at(1773183600));
    EXPECT_EQ(momentFromISO8601("2018-11-04", calendarIn("America/Sao_Paulo")), at(1541300400));
}

TEST(MomentTests, whatIsNoMomentFails) {
    for (auto const* text : {"", "tomorrow", "2026-03-11T", "2026-03-11T09", "2026-02-30", "2026-03-11T25:00",
                             "2026-03-11T09:00:", "2026-03-11 09:00", "2026-03-11T09:00:00.5"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(momentFromISO8601(text, Calendar(TimeZone::utc())), std::nullopt);
    }
}

TEST(MomentTests, aMomentOutsideTheCalendarsYearsFails) {
    struct Row {
        char const* zone;
        char const* text;
        std::optional<double> seconds;
    };
    for (auto const& row : {
             Row{"Europe/Berlin", "9999-12-31T23:30:00Z", std::nullopt},
             Row{"Europe/Berlin", "9999-12-31T23:30Z", std::nullopt},
             Row{"Europe/Berlin", "9999-12-31T22:59:59Z", 253402297199},
             Row{"Europe/Berlin", "9999-12-31T23:59:59", 253402297199},
             Row{"Europe/Berlin", "9999-12-31", 253402210800},
             Row{"America/New_York", "0001-01-01T00:00:00Z", std::nullopt},
             Row{"America/New_York", "0001-01-01T05:00Z", -62135578800},
             Row{"America/New_York", "0001-01-01", -62135579038},
             Row{"UTC", "9999-12-31T23:30:00-01:00", std::nullopt},
             Row{"UTC", "0001-01-01T00:30:00+01:00", std::nullopt},
         }) {
        SCOPED_TRACE(std::string(row.zone) + " " + row.text);
        auto const moment = momentFromISO8601(row.text, calendarIn(row.zone));
        EXPECT_EQ(moment.transform([](Date date) { return date.secondsSince1970; }), row.seconds);
    }
}

TEST(FixedPatternTests, theTwelveHourClockWithAndWithoutMarker) {
    useHostileLocale();
    struct Row {
        double secondOfDay;
        std::string_view withMarker;
        std::string_view without;
    };
    Calendar const calendar(TimeZone::utc());
    for (auto const& row : {Row{0, "12:00 a.m.", "12:00"},
                            {15 * 60, "12:15 a.m.", "12:15"},
                            {9 * 3600 + 5 * 60, "09:05 a.m.", "09:05"},
                            {9 * 3600 + 5 * 60 + 59.999, "09:05 a.m.", "09:05"},
                            {11 * 3600 + 59 * 60, "11:59 a.m.", "11:59"},
                            {12 * 3600, "12:00 p.m.", "12:00"},
                            {12 * 3600 + 30 * 60, "12:30 p.m.", "12:30"},
                            {13 * 3600 + 5 * 60, "01:05 p.m.", "01:05"},
                            {23 * 3600 + 59 * 60, "11:59 p.m.", "11:59"}}) {
        SCOPED_TRACE(row.withMarker);
        auto const date = at(1709683200 + row.secondOfDay);
        EXPECT_EQ(twelveHourTimeWithMarker(date, calendar), row.withMarker);
        EXPECT_EQ(twelveHourTime(date, calendar), row.without);
    }
}

TEST(FixedPatternTests, theLogTimestampIsPlainInEveryLocale) {
    useHostileLocale();
    EXPECT_EQ(logTimestamp(at(1700000000), Calendar(TimeZone::utc())), "2023-11-14 22:13:20");
    EXPECT_EQ(logTimestamp(at(1700000000), calendarIn("America/New_York")), "2023-11-14 17:13:20");
}

TEST(FixedPatternTests, weekdayNamesAreThoseOfTheLocaleGiven) {
    useHostileLocale();
    Calendar const calendar(TimeZone::utc());
    struct Row {
        std::string_view locale;
        std::string_view expected;
    };
    for (auto const& row : {Row{"es", "miércoles"},
                            {"en", "Wednesday"},
                            {"es_MX", "miércoles"},
                            {"pt_BR", "quarta-feira"},
                            {"de_DE", "Mittwoch"},
                            // A locale whose own calendar is not the Gregorian one has the same week.
                            {"th_TH", "วันพุธ"}}) {
        SCOPED_TRACE(row.locale);
        EXPECT_EQ(weekdayName(at(1709726400), calendar, {.identifier = std::string(row.locale)}),
                  row.expected);
    }
}

TEST(FixedPatternTests, theWeekdayIsTheOneOfTheCalendarsZone) {
    // 2024-03-06 20:00 UTC.
    EXPECT_EQ(weekdayName(at(1709755200), calendarIn("Asia/Tokyo"), {.identifier = "en"}), "Thursday");
    EXPECT_EQ(weekdayName(at(1709755200), Calendar(TimeZone::utc()), {.identifier = "en"}), "Wednesday");
}

} // namespace

#include "Foundation/TimeZone.h"

#include "Foundation/Environment.h"
#include "Foundation/ZoneRuleText.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace {

using namespace Foundation;
using Kind = TimeZone::LocalTimeResolution::Kind;

TimeZone zone(std::string_view name) {
    return TimeZone::named(name).value();
}

TEST(TimeZoneTests, offsetsFollowTheRulesInForceAtTheInstant) {
    struct Row {
        std::string_view name;
        std::string_view zone;
        std::int64_t instant;
        std::int32_t expected;
    };
    for (auto const& row :
         {Row{"New York before its railways' time", "America/New_York", -5364601438, -17762},
          {"Cairo, the last second of winter", "Africa/Cairo", 1776981599, 7200},
          {"Cairo, the first second of summer", "Africa/Cairo", 1776981600, 10800},
          {"Cairo in the years without summer time", "Africa/Cairo", 1656669600, 7200},
          {"Cairo, winter 2026", "Africa/Cairo", 1768471200, 7200},
          {"Cairo, summer 2050", "Africa/Cairo", 2540278800, 10800},
          {"Cairo, winter 2050", "Africa/Cairo", 2524644000, 7200},
          {"Almaty before March 2024", "Asia/Almaty", 1709186400, 21600},
          {"Almaty since March 2024", "Asia/Almaty", 1709362800, 18000},
          {"Almaty, 2050", "Asia/Almaty", 2540271600, 18000},
          {"Mexico City without summer time", "America/Mexico_City", 1782928800, -21600},
          {"Asunción, always in summer time", "America/Asuncion", 1782918000, -10800},
          {"New York, summer 2050", "America/New_York", 2540304000, -14400},
          {"Berlin, the last second of winter 2050", "Europe/Berlin", 2531955599, 3600},
          {"Berlin, the first second of summer 2050", "Europe/Berlin", 2531955600, 7200},
          {"Berlin, summer 9999", "Europe/Berlin", 253386439200, 7200},
          {"Dublin, summer 2026", "Europe/Dublin", 1782903600, 3600},
          {"Dublin, summer 2050", "Europe/Dublin", 2540286000, 3600},
          {"Dublin, winter 2050", "Europe/Dublin", 2524651200, 0},
          {"Kathmandu, a quarter of an hour", "Asia/Kathmandu", 1782886500, 20700},
          {"Lord Howe, summer", "Australia/Lord_Howe", 1767229200, 39600},
          {"Lord Howe, winter, half an hour less", "Australia/Lord_Howe", 1782869400, 37800}}) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(zone(row.zone).secondsFromUTC(row.instant), row.expected);
    }
}

TEST(TimeZoneTests, wallClockTimesAreUniqueRepeatedOrSkipped) {
    struct Row {
        std::string_view name;
        std::string_view zone;
        std::int64_t local;
        Kind kind;
        std::int64_t first;
        std::int64_t second;
    };
    for (auto const& row :
         {Row{"New York 2024-07-01 12:00", "America/New_York", 1719835200, Kind::unique, 1719849600,
              1719849600},
          {"New York 2024-03-10 02:30", "America/New_York", 1710037800, Kind::skipped, 1710055800,
           1710054000},
          {"New York 2024-03-10 01:59:59", "America/New_York", 1710035999, Kind::unique, 1710053999,
           1710053999},
          {"New York 2024-03-10 03:00", "America/New_York", 1710039600, Kind::unique, 1710054000, 1710054000},
          {"New York 2024-11-03 01:30", "America/New_York", 1730597400, Kind::repeated, 1730611800,
           1730615400},
          {"New York 2024-11-03 02:00", "America/New_York", 1730599200, Kind::unique, 1730617200, 1730617200},
          {"Lord Howe 2024-04-07 01:45", "Australia/Lord_Howe", 1712454300, Kind::repeated, 1712414700,
           1712416500},
          {"Apia 2011-12-30 12:00, a day that never was", "Pacific/Apia", 1325246400, Kind::skipped,
           1325282400, 1325239200},
          {"Cairo 2026-04-24 00:30", "Africa/Cairo", 1776990600, Kind::skipped, 1776983400, 1776981600},
          {"Berlin 2050-10-30 02:30", "Europe/Berlin", 2550709800, Kind::repeated, 2550702600, 2550706200}}) {
        SCOPED_TRACE(row.name);
        auto const resolution = zone(row.zone).resolveLocal(row.local);
        EXPECT_EQ(resolution.kind, row.kind);
        EXPECT_EQ(resolution.first, row.first);
        EXPECT_EQ(resolution.second, row.second);
    }
}

TEST(TimeZoneTests, farYearsResolveAsTheirRuleSays) {
    // 2450-03-27 02:30, the last Sunday of its March.
    auto const berlin = zone("Europe/Berlin");
    auto const resolution = berlin.resolveLocal(15154741800);
    EXPECT_EQ(resolution.kind, Kind::skipped);
    EXPECT_EQ(resolution.second, 15154736400);
    EXPECT_EQ(berlin.secondsFromUTC(15154736399), 3600);
    EXPECT_EQ(berlin.secondsFromUTC(15154736400), 7200);
}

TEST(TimeZoneTests, eachYearsChangesAreFoundWhateverYearIsAskedForFirst) {
    using std::chrono::sys_days;
    auto const berlin = TimeZone::named("Europe/Berlin").value();
    auto const lastSunday = [](int year, unsigned month) {
        sys_days const day(std::chrono::year(year) / std::chrono::month(month) /
                           std::chrono::Sunday[std::chrono::last]);
        return std::chrono::sys_seconds(day).time_since_epoch().count() + 3600; // 01:00 UTC
    };
    // Near the present, then far on both sides of it, and near again.
    for (auto const& [first, last] :
         {std::pair(2020, 2030), std::pair(1985, 1995), std::pair(2036, 2110), std::pair(1990, 2041)}) {
        for (int year = first; year <= last; ++year) {
            auto const spring = lastSunday(year, 3);
            auto const autumn = lastSunday(year, year < 1996 ? 9 : 10);
            EXPECT_EQ(berlin.secondsFromUTC(spring - 1), 3600) << year;
            EXPECT_EQ(berlin.secondsFromUTC(spring), 7200) << year;
            EXPECT_EQ(berlin.secondsFromUTC(autumn - 1), 7200) << year;
            EXPECT_EQ(berlin.secondsFromUTC(autumn), 3600) << year;
            EXPECT_EQ(berlin.resolveLocal(spring + 3600).kind, TimeZone::LocalTimeResolution::Kind::skipped)
                << year;
            EXPECT_EQ(berlin.resolveLocal(autumn + 3600).kind, TimeZone::LocalTimeResolution::Kind::repeated)
                << year;
            // The turn of the year, where the years that are found first begin and end.
            auto const newYear =
                sys_days(std::chrono::year(year) / 1 / 1).time_since_epoch().count() * 86400L;
            for (long const shift : {-200'000L, -1L, 0L, 1L, 300'000L})
                EXPECT_EQ(berlin.secondsFromUTC(newYear + shift), 3600) << year << " " << shift;
        }
    }
}

TEST(TimeZoneTests, posixRuleTextsAreZones) {
    EXPECT_EQ(zone("EST5EDT,M3.2.0,M11.1.0").secondsFromUTC(1783000000), -14400);
    EXPECT_EQ(zone("EST5EDT,M3.2.0,M11.1.0").secondsFromUTC(1770000000), -18000);
    EXPECT_EQ(zone("<+0545>-5:45").secondsFromUTC(1783000000), 20700);
    EXPECT_EQ(zone("IST-1GMT0,M10.5.0,M3.5.0/1").secondsFromUTC(1783000000), 3600);
    EXPECT_EQ(zone("IST-1GMT0,M10.5.0,M3.5.0/1").secondsFromUTC(1770000000), 0);
    EXPECT_EQ(zone("IST-1GMT0,M10.5.0,M3.5.0/1").identifier(), "IST-1GMT0,M10.5.0,M3.5.0/1");
}

TEST(TimeZoneTests, whatNamesNoZoneIsAbsent) {
    for (std::string_view const name :
         {"", "Mars/Phobos", "nonsense", "/etc/passwd", "/usr/share/zoneinfo/Europe/Madrid", ":/etc/passwd",
          ":Europe/Madrid", "../../etc/passwd", "Europe/../Europe/Madrid", "Europe/", "Europe", "+05:00",
          "05", "Europe/Madrid\n"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(TimeZone::named(name), std::nullopt);
    }
    EXPECT_EQ(TimeZone::named(std::string(100'000, 'A')), std::nullopt);
}

TEST(TimeZoneTests, zonesAreEqualByName) {
    EXPECT_EQ(zone("Europe/Madrid"), zone("Europe/Madrid"));
    EXPECT_NE(zone("Europe/Madrid"), zone("Europe/Paris"));
    EXPECT_EQ(TimeZone::utc(), zone("UTC"));
    EXPECT_EQ(TimeZone::fixedOffset(19800), TimeZone::fixedOffset(19800));
}

TEST(TimeZoneTests, aFixedOffsetNeverChanges) {
    auto const west = TimeZone::fixedOffset(-16200);
    EXPECT_EQ(west.identifier(), "UTC-04:30");
    EXPECT_EQ(west.secondsFromUTC(0), -16200);
    EXPECT_EQ(west.resolveLocal(0).first, 16200);
    EXPECT_EQ(west.resolveLocal(0).kind, Kind::unique);
}

class CurrentTimeZoneTests : public testing::Test {
protected:
    CurrentTimeZoneTests() {
        std::string pattern = (std::filesystem::temp_directory_path() / "zone-XXXXXX").string();
        folder = mkdtemp(pattern.data());
        link = folder / "localtime";
    }
    ~CurrentTimeZoneTests() override {
        std::error_code failure;
        std::filesystem::remove_all(folder, failure);
    }

    std::string currentName(std::string const& variable) const {
        return TimeZone::current(Environment({{"TZ", variable}}), link).identifier();
    }

    std::filesystem::path folder;
    std::filesystem::path link;
};

TEST_F(CurrentTimeZoneTests, theVariableWinsInEachOfItsForms) {
    std::filesystem::create_symlink("/usr/share/zoneinfo/Asia/Tokyo", link);
    EXPECT_EQ(currentName("Europe/Madrid"), "Europe/Madrid");
    EXPECT_EQ(currentName(":Europe/Madrid"), "Europe/Madrid");
    EXPECT_EQ(currentName("/usr/share/zoneinfo/Europe/Madrid"), "Europe/Madrid");
    EXPECT_EQ(currentName(":/usr/share/zoneinfo/Europe/Madrid"), "Europe/Madrid");
    EXPECT_EQ(currentName("EST5EDT,M3.2.0,M11.1.0"), "EST5EDT,M3.2.0,M11.1.0");
    EXPECT_EQ(currentName(""), "UTC");
}

TEST_F(CurrentTimeZoneTests, anUnknownVariableOrNoneMeansTheSystemsZone) {
    std::filesystem::create_symlink("/usr/share/zoneinfo/Asia/Tokyo", link);
    EXPECT_EQ(currentName("Mars/Phobos"), "Asia/Tokyo");
    EXPECT_EQ(currentName("/etc/passwd"), "Asia/Tokyo");
    EXPECT_EQ(TimeZone::current(Environment(), link).identifier(), "Asia/Tokyo");
}

TEST_F(CurrentTimeZoneTests, aChangedLinkIsSeenAtTheNextCall) {
    std::filesystem::create_symlink("/usr/share/zoneinfo/Asia/Tokyo", link);
    EXPECT_EQ(TimeZone::current(Environment(), link).identifier(), "Asia/Tokyo");
    std::filesystem::remove(link);
    std::filesystem::create_symlink("../usr/share/zoneinfo/Europe/Madrid", link);
    EXPECT_EQ(TimeZone::current(Environment(), link).identifier(), "Europe/Madrid");
}

TEST_F(CurrentTimeZoneTests, aCopiedZoneFileServesLikeALink) {
    std::filesystem::copy_file("/usr/share/zoneinfo/Asia/Tokyo", link);
    EXPECT_EQ(TimeZone::current(Environment(), link).secondsFromUTC(1783000000), 32400);
}

TEST_F(CurrentTimeZoneTests, withoutAnySettingItIsUTC) {
    EXPECT_EQ(TimeZone::current(Environment(), link), TimeZone::utc());
    std::filesystem::create_symlink("/usr/share/zoneinfo/Mars/Phobos", link);
    EXPECT_EQ(TimeZone::current(Environment(), link), TimeZone::utc());
}

TEST(ZoneRuleTextTests, onlyNegativeSavingIsExchanged) {
    EXPECT_EQ(ZoneRuleText::exchangingNegativeSaving("IST-1GMT0,M10.5.0,M3.5.0/1"),
              "GMT0IST-1,M3.5.0/1,M10.5.0");
    EXPECT_EQ(ZoneRuleText::exchangingNegativeSaving("<+01>-1<+00>0,M1.1.0,M2.1.0"),
              "<+00>0<+01>-1,M2.1.0,M1.1.0");
    for (std::string_view const other :
         {"CET-1CEST,M3.5.0,M10.5.0/3", "<-02>2<-01>1,M3.5.0/-1,M10.5.0/0", "JST-9", "IST-1GMT0", "",
          "Europe/Dublin", "IST-1GMT0,M10.5.0", "<IST-1GMT0,M10.5.0,M3.5.0", "IST-GMT0,a,b"}) {
        SCOPED_TRACE(other);
        EXPECT_EQ(ZoneRuleText::exchangingNegativeSaving(other), std::nullopt);
    }
}

TEST(ZoneRuleTextTests, theClosingRuleIsReadFromAZoneFile) {
    EXPECT_EQ(ZoneRuleText::ofZoneFile("/usr/share/zoneinfo/Asia/Tokyo"), "JST-9");
    EXPECT_EQ(ZoneRuleText::ofZoneFile("/nowhere/at/all"), std::nullopt);
    EXPECT_EQ(ZoneRuleText::ofZoneFile("/dev/null"), std::nullopt);
}

} // namespace

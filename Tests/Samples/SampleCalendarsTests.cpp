#include "Samples/SampleCalendars.h"

#include "Platform/EventStore/ICalendar/SeriesSet.h"
#include "Platform/EventStore/ICalendar/ZoneCatalog.h"
#include "Samples/SampleFolder.h"
#include "Tests/EventStore/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

using namespace Samples;
using namespace std::chrono_literals;
namespace ICalendar = Platform::ICalendar;

namespace {

SampleRequest request(std::chrono::year_month_day day, std::string_view zone) {
    return {.day = std::chrono::local_days(day), .zone = Foundation::TimeZone::named(zone).value()};
}

std::map<std::string, std::string> filesOf(SampleRequest const& request) {
    std::map<std::string, std::string> files;
    makeSampleCalendars(request, [&](SampleFile const& file) {
        auto const path = file.folder.empty() ? file.name : file.folder + "/" + file.name;
        EXPECT_TRUE(files.emplace(path, file.content).second) << path << " was made twice";
    });
    return files;
}

struct Happening {
    double start;
    double end;
    bool isAllDay;
    std::string title;
};

// What the viewer sees of the files on the day `offset` days from the request's, by start.
std::vector<Happening> happenings(SampleRequest const& request, int offset = 0) {
    std::vector<std::shared_ptr<ICalendar::CalendarFile const>> calendars;
    for (auto const& [path, content] : filesOf(request)) {
        if (!path.ends_with(".ics")) continue;
        calendars.push_back(ICalendar::read(content, path));
        EXPECT_TRUE(calendars.back()->problems.empty())
            << path << ": " << calendars.back()->problems[0].reason;
    }
    ICalendar::SeriesSet const set(calendars, std::make_shared<ICalendar::ZoneCatalog>());
    EXPECT_TRUE(set.problems().empty());
    auto const midnight = [&](std::chrono::local_days day) {
        auto const local = std::chrono::duration_cast<std::chrono::seconds>(day.time_since_epoch()).count();
        return static_cast<double>(request.zone.resolveLocal(local).first);
    };
    auto const day = request.day + std::chrono::days(offset);
    std::vector<Happening> found;
    auto const expansion =
        set.occurrences({midnight(day)}, {midnight(day + std::chrono::days(1))}, request.zone);
    for (auto const& occurrence : expansion.occurrences) {
        found.push_back({.start = occurrence.start.secondsSince1970,
                         .end = occurrence.end.secondsSince1970,
                         .isAllDay = occurrence.isAllDay,
                         .title = occurrence.event->summary ? occurrence.event->summary->text() : ""});
    }
    std::ranges::sort(found, {}, &Happening::start);
    return found;
}

std::vector<std::string> titles(std::vector<Happening> const& happenings, bool isAllDay) {
    std::vector<std::string> found;
    for (auto const& happening : happenings) {
        if (happening.isAllDay == isAllDay) found.push_back(happening.title);
    }
    return found;
}

} // namespace

TEST(SampleCalendarsTests, theDayIsTheSameWhateverTheDateAndTheZone) {
    struct Row {
        char const* name;
        SampleRequest request;
    };
    std::vector<Row> const rows{
        {"a Wednesday", request(2026y / 3 / 11, "Europe/Madrid")},
        {"a Saturday", request(2026y / 11 / 21, "UTC")},
        {"a Sunday with a change of the clock", request(2026y / 3 / 29, "Europe/Berlin")},
        {"the first of a month", request(2026y / 7 / 1, "America/New_York")},
        {"a leap day", request(2028y / 2 / 29, "Asia/Kathmandu")},
        {"six days before a leap day", request(2028y / 2 / 23, "Asia/Tokyo")},
        {"far east", request(2026y / 12 / 30, "Pacific/Kiritimati")},
        {"far west", request(2026y / 8 / 5, "Pacific/Pago_Pago")},
    };
    for (auto const& row : rows) {
        auto const found = happenings(row.request);
        EXPECT_EQ(titles(found, false),
                  (std::vector<std::string>{
                      "Stand-up", "Design review of the quarterly roadmap with every team lead",
                      "昼食会議 新しい企画について", "Birthday 🎂 cake & coffee", "اجتماع مع فريق التطوير",
                      "Interview: platform engineer", "Pick up Noa from school", "Dentist",
                      "Call with the Lisbon office", "Dinner with Ben & Chloé", "Evening run"}))
            << row.name;
        auto allDay = titles(found, true);
        std::ranges::sort(allDay);
        EXPECT_EQ(allDay, (std::vector<std::string>{"Anna on leave", "Release week"})) << row.name;
    }
}

TEST(SampleCalendarsTests, noTwoTimedEventsOfTheDayOverlap) {
    double last = 0;
    for (auto const& happening : happenings(request(2026y / 3 / 11, "Europe/Madrid"))) {
        if (happening.isAllDay) continue;
        EXPECT_GE(happening.start, last) << happening.title;
        last = happening.end;
    }
    EXPECT_GT(last, 0);
}

TEST(SampleCalendarsTests, theDaysAroundAreFilledToo) {
    auto const subject = request(2026y / 3 / 11, "Europe/Madrid");
    for (int offset = -14; offset <= 14; ++offset) {
        EXPECT_GE(titles(happenings(subject, offset), false).size(), 2U) << offset;
    }
}

TEST(SampleCalendarsTests, theTeamsSeriesHasAChangedACancelledAndAMissingOccurrence) {
    auto const subject = request(2026y / 3 / 11, "Europe/Madrid");
    auto const has = [&](int offset, std::string_view title) {
        auto const found = titles(happenings(subject, offset), false);
        return std::ranges::find(found, title) != found.end();
    };
    EXPECT_TRUE(has(-20, "Team sync"));
    EXPECT_FALSE(has(-13, "Team sync"));
    EXPECT_TRUE(has(-12, "Team sync (moved)"));
    EXPECT_FALSE(has(-6, "Team sync"));
    EXPECT_TRUE(has(1, "Team sync, short: half of us are travelling"));
    EXPECT_FALSE(has(8, "Team sync"));
    EXPECT_TRUE(has(15, "Team sync"));
}

TEST(SampleCalendarsTests, equalRequestsGiveEqualBytes) {
    auto subject = request(2026y / 3 / 11, "Europe/Madrid");
    subject.archivedEvents = 50;
    EXPECT_EQ(filesOf(subject), filesOf(subject));
    auto other = subject;
    other.seed = 2;
    EXPECT_NE(filesOf(subject), filesOf(other));
}

TEST(SampleCalendarsTests, everyFolderNamesAndColoursItsCalendar) {
    auto subject = request(2026y / 3 / 11, "Europe/Madrid");
    subject.archivedEvents = 3;
    auto const files = filesOf(subject);
    std::set<std::string> folders;
    for (auto const& [path, content] : files) {
        if (path.contains('/')) folders.insert(path.substr(0, path.find('/')));
    }
    EXPECT_EQ(folders.size(), 9U + 3U);
    for (auto const& folder : folders) {
        EXPECT_TRUE(files.contains(folder + "/displayname")) << folder;
        ASSERT_TRUE(files.contains(folder + "/color")) << folder;
        EXPECT_EQ(files.at(folder + "/color").size(), 7U) << folder;
    }
}

TEST(SampleCalendarsTests, theArchiveHasAsManyEventsAsAskedForAndAllCanBeRead) {
    auto subject = request(2026y / 3 / 11, "Europe/Madrid");
    subject.archivedEvents = 400;
    int count = 0;
    int repeating = 0;
    int allDay = 0;
    int changed = 0;
    for (auto const& [path, content] : filesOf(subject)) {
        if (!path.starts_with("archive-") || !path.ends_with(".ics")) continue;
        ++count;
        auto const file = ICalendar::read(content, path);
        EXPECT_TRUE(file->problems.empty()) << path << ": " << file->problems[0].reason;
        ASSERT_FALSE(file->events.empty()) << path;
        if (file->events[0].isRecurring()) ++repeating;
        if (file->events[0].isAllDay()) ++allDay;
        if (file->events.size() > 1) ++changed;
    }
    EXPECT_EQ(count, 400);
    EXPECT_GT(repeating, 20);
    EXPECT_GT(allDay, 40);
    EXPECT_GT(changed, 0);
}

TEST(SampleCalendarsTests, aZoneWithoutAPlainNameMakesTimesFloat) {
    auto const subject = request(2026y / 3 / 11, "EST5EDT,M3.2.0,M11.1.0");
    auto const files = filesOf(subject);
    EXPECT_TRUE(files.at("health/dentist.ics").contains("DTSTART:20260311T173000\r\n"));
    EXPECT_EQ(titles(happenings(subject), false).size(), 11U);
}

TEST(SampleFolderTests, theFilesLieWhereTheirNamesSay) {
    TemporaryFolder const folder;
    auto const subject = request(2026y / 3 / 11, "Europe/Madrid");
    ASSERT_EQ(writeSampleCalendars(subject, folder / "Calendars"), std::nullopt);
    std::map<std::string, std::string> written;
    for (auto const& entry : std::filesystem::recursive_directory_iterator(folder / "Calendars")) {
        if (!entry.is_regular_file()) continue;
        std::ifstream stream(entry.path(), std::ios::binary);
        written[entry.path().lexically_relative(folder / "Calendars").string()] =
            std::string(std::istreambuf_iterator<char>(stream), {});
    }
    EXPECT_EQ(written, filesOf(subject));
}

TEST(SampleFolderTests, aFolderThatHoldsAnythingIsLeftAlone) {
    TemporaryFolder const folder;
    folder.write("work/mine.ics", "mine");
    EXPECT_EQ(writeSampleCalendars(request(2026y / 3 / 11, "UTC"), folder.path()),
              "The folder " + folder.path().string() + " is not empty; nothing was written");
    EXPECT_FALSE(std::filesystem::exists(folder / "holidays.ics"));
}

TEST(SampleFolderTests, aPlaceThatCannotBeWrittenIsNamed) {
    TemporaryFolder const folder;
    folder.write("file", "");
    auto const problem = writeSampleCalendars(request(2026y / 3 / 11, "UTC"), folder / "file");
    ASSERT_TRUE(problem.has_value());
    EXPECT_TRUE(problem->starts_with("The folder " + (folder / "file").string())) << *problem;
}

#include "Applications/Companion/OccurrenceListing.h"

#include "Applications/Companion/CommandError.h"
#include "Foundation/Calendar.h"
#include "Foundation/Environment.h"
#include "Foundation/TimeZone.h"
#include "Platform/EventStore/Folder/RegularFile.h"
#include "Platform/Files/PosixFileManager.h"
#include "Tests/EventStore/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

using Foundation::Date;

TEST(OccurrenceListingTests, whatReachesPastTheEndsOfTimeHasADayAndATime) {
    struct Row {
        char const* zone;
        char const* bounds;
    };
    Platform::PosixFileManager const files{Foundation::Environment()};
    Companion::Interval const ever{.from = Date{.secondsSince1970 = -62135596800},
                                   .to = Date{.secondsSince1970 = 253402300799}};
    for (auto const& row : {
             Row{"Europe/Berlin", "DTSTART:99991231T200000Z\r\nDTEND:99991231T233000Z"},
             Row{"Europe/Berlin", "DTSTART:99991231T200000Z\r\nDURATION:P400D"},
             Row{"Europe/Berlin", "DTSTART;VALUE=DATE:99991230\r\nDURATION:P400D"},
             Row{"Europe/Berlin", "DTSTART;VALUE=DATE:99991231"},
             Row{"America/New_York", "DTSTART:00010101T000000Z\r\nDTEND:00010102T000000Z"},
             Row{"America/New_York", "DTSTART;VALUE=DATE:00010101\r\nDTEND;VALUE=DATE:00010103"},
         }) {
        SCOPED_TRACE(std::string(row.zone) + " " + row.bounds);
        TemporaryFolder const folder;
        auto const file =
            folder.write("Home/a.ics", "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:test\r\nBEGIN:VEVENT\r\n"
                                       "UID:a\r\nDTSTAMP:20260101T000000Z\r\nSUMMARY:Edge\r\n" +
                                           std::string(row.bounds) + "\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n");
        auto const zone = Foundation::TimeZone::named(row.zone).value();
        Foundation::Calendar const calendar(zone);
        for (auto const& path : {file, folder.path()}) {
            auto const listing = Companion::listOccurrences(files, path, ever, zone);
            for (auto const& occurrence : listing.occurrences) {
                EXPECT_TRUE(calendar.dateByAddingMinutes(0, occurrence.start).has_value());
                EXPECT_TRUE(calendar.dateByAddingMinutes(0, occurrence.end).has_value());
            }
            EXPECT_EQ(listing.occurrences.size() + listing.problems.size(), 1U);
        }
    }
}

TEST(OccurrenceListingTests, aFileThatIsLargerThanAnyCalendarIsRefused) {
    TemporaryFolder const folder;
    auto const file = folder.write("Home/a.ics", "BEGIN:VCALENDAR\r\n");
    std::filesystem::resize_file(file, Platform::largestCalendarFile + 1);
    Platform::PosixFileManager const files{Foundation::Environment()};
    Companion::Interval const ever{.from = Date{.secondsSince1970 = 0}, .to = Date{.secondsSince1970 = 1}};
    try {
        (void)Companion::listOccurrences(files, file, ever, Foundation::TimeZone::utc());
        FAIL() << "it was read";
    } catch (Companion::CommandError const& error) {
        EXPECT_THAT(error.what(), testing::HasSubstr("File too large"));
    }
}

} // namespace

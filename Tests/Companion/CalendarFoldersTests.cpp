#include "Applications/Companion/CalendarFolders.h"

#include "Tests/EventStore/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace {

TEST(CalendarFoldersTests, aFolderHoldsWhatTheStoreReadsAsCalendars) {
    struct Row {
        char const* file;
        bool holds;
    };
    for (auto const& row : {
             Row{"a.ics", true},
             Row{"A.ICS", true},
             Row{"work/a.Ics", true},
             Row{".ics", false},
             Row{".a.ics", false},
             Row{"a.ics.tmp", false},
             Row{"deep/er/a.ics", false},
         }) {
        TemporaryFolder const folder;
        folder.write(row.file, "");
        EXPECT_EQ(Companion::holdsCalendarFiles(folder.path()), row.holds) << row.file;
    }
}

} // namespace

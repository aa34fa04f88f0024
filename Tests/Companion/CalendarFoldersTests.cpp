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

TEST(CalendarFoldersTests, sourcesAreNestedWhereTheStoreReadsOneAsACalendarOfTheOther) {
    TemporaryFolder const home;
    for (auto const* folder : {"all/work/deep", "all/.hidden", "other"})
        std::filesystem::create_directories(home / folder);
    std::filesystem::create_directory_symlink(home / "all/work", home / "link");
    struct Row {
        char const* given;
        char const* known;
        bool isNested;
    };
    for (auto const& row : {
             Row{"all/work", "all", true},
             Row{"all", "all/work", true},
             Row{"link", "all", true},
             Row{"all", "link", true},
             Row{"all/work/deep", "all", false}, // No calendar is read that deep.
             Row{"all/.hidden", "all", false},
             Row{"all", "all", false},
             Row{"other", "all", false},
             Row{"gone", "all", false},
             Row{"all", "gone", false},
         }) {
        SCOPED_TRACE(std::string(row.given) + " beside " + row.known);
        std::vector<Platform::CalendarRoot> const roots{
            {.kind = "folder", .id = "other", .path = home / "nowhere", .title = "Other"},
            {.kind = "folder", .id = "known", .path = home / row.known, .title = "Known"}};
        auto const nested = Companion::nestedSources(home / row.given, roots);
        ASSERT_EQ(nested.has_value(), row.isNested);
        if (nested) {
            EXPECT_EQ(nested->known, &roots[1]);
            EXPECT_EQ(nested->outer.filename(), "all");
        }
    }
}

} // namespace

#include "Platform/EventStore/Folder/CalendarRootReader.h"

#include "Tests/EventStore/Folder/SmallCalendars.h"
#include "Tests/EventStore/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <sys/stat.h>

using namespace Platform;

namespace {

using Texts = std::vector<std::string>;

constexpr std::int64_t second = 1'000'000'000;

// Late enough for every stamp of a test to be trusted.
std::int64_t later() {
    auto const now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(now).count() + 3600 * second;
}

class CalendarRootReaderTests : public testing::Test {
protected:
    CalendarRootReader reader(RootLayout layout = RootLayout::folderOfCalendars) const {
        return {{.kind = "folder", .id = "r1", .path = root.path(), .title = "My root"},
                layout,
                std::make_shared<ICalendar::ZoneCatalog>()};
    }

    // "identifier = title" of each calendar.
    static Texts calendars(CalendarRootReader& reader) {
        Texts texts;
        for (auto const& calendar : reader.calendars(later())) {
            texts.push_back(calendar.calendarIdentifier + " = " + calendar.title);
        }
        return texts;
    }

    // "calendar identifier: title" of each event of March 2026.
    static Texts events(CalendarRootReader& reader, std::int64_t now = later(),
                        std::optional<Texts> calendars = std::nullopt) {
        std::vector<EKEvent> found;
        reader.appendEvents({.start = {1772319600}, .end = {1774994400}, .calendars = std::move(calendars)},
                            Foundation::TimeZone::utc(), now, found);
        Texts texts;
        for (auto const& event : found) {
            texts.push_back(event.calendar->calendarIdentifier + ": " + event.title.value_or("untitled"));
        }
        return texts;
    }

    Texts problems(CalendarRootReader& reader,
                   StoreProblem::Effect effect = StoreProblem::Effect::skipped) const {
        Texts texts;
        for (auto const& problem : reader.problems(later())) {
            if (problem.effect != effect) continue;
            auto shown = problem;
            shown.path = problem.path.lexically_relative(root.path());
            texts.push_back(describe(shown));
        }
        return texts;
    }

    std::vector<double> colorOf(CalendarRootReader& reader) const {
        auto const found = reader.calendars(later());
        if (found.size() != 1) return {-1};
        return found[0].cgColor.components.value_or(std::vector<double>{});
    }

    TemporaryFolder root;
};

} // namespace

TEST_F(CalendarRootReaderTests, eachFolderWithCalendarFilesIsACalendarByName) {
    root.write("work/a.ics", smallFile({smallEvent("a", "A")}));
    root.write("work/b.ics", smallFile({smallEvent("b", "B")}));
    root.write("home/c.ics", smallFile({smallEvent("c", "C")}));
    root.write("notes/readme.txt", "nothing to see");
    std::filesystem::create_directory(root / "empty");
    auto subject = reader();
    EXPECT_EQ(calendars(subject), (Texts{"r1/home = home", "r1/work = work"}));
    EXPECT_EQ(events(subject), (Texts{"r1/home: C", "r1/work: A", "r1/work: B"}));
    EXPECT_EQ(problems(subject), Texts{});
}

TEST_F(CalendarRootReaderTests, aFolderIsTitledByItsDisplayName) {
    root.write("work/a.ics", smallFile({smallEvent("a", "A")}, "X-WR-CALNAME:Not this\r\n"));
    struct Row {
        char const* content;
        char const* title;
    };
    for (auto const& row :
         std::vector<Row>{{"  Büro\n", "Büro"}, {"", "work"}, {" \n", "work"}, {"a\xff", "a\xEF\xBF\xBD"}}) {
        root.write("work/displayname", row.content);
        auto subject = reader();
        EXPECT_EQ(calendars(subject), (Texts{std::string("r1/work = ") + row.title})) << row.content;
    }
}

TEST_F(CalendarRootReaderTests, aFolderIsColouredByItsColorFile) {
    root.write("work/a.ics", smallFile({smallEvent("a", "A")}));
    auto subject = reader();
    EXPECT_EQ(colorOf(subject), std::vector<double>{});
    struct Row {
        char const* content;
        std::vector<double> components;
    };
    for (auto const& row : std::vector<Row>{{"#FF0033\n", {1, 0, 0.2, 1}},
                                            {"#ff003380", {1, 0, 0.2, 1}},
                                            {"Lime", {0, 1, 0, 1}},
                                            {"", {}},
                                            {"#FF00", {}},
                                            {"no colour", {}},
                                            {"\xff\xfe#", {}}}) {
        root.write("work/color", row.content);
        EXPECT_EQ(colorOf(subject), row.components) << row.content;
    }
}

TEST_F(CalendarRootReaderTests, aLooseFileOfSeveralEventsIsACalendarOfItsOwn) {
    root.write("holidays.ics", smallFile({smallEvent("a", "A"), smallEvent("b", "B")}, "COLOR:red\r\n"));
    auto subject = reader();
    EXPECT_EQ(calendars(subject), (Texts{"r1/holidays.ics = holidays"}));
    EXPECT_EQ(colorOf(subject), (std::vector<double>{1, 0, 0, 1}));
    EXPECT_EQ(events(subject), (Texts{"r1/holidays.ics: A", "r1/holidays.ics: B"}));
}

TEST_F(CalendarRootReaderTests, aLooseFileThatNamesItselfIsACalendarOfThatName) {
    root.write("one.ics", smallFile({smallEvent("a", "A")}, "X-WR-CALNAME:Birthdays\\, all\r\n"));
    root.write("none.ics", smallFile({}, "X-WR-CALNAME:Still empty\r\n"));
    auto subject = reader();
    EXPECT_EQ(calendars(subject), (Texts{"r1/none.ics = Still empty", "r1/one.ics = Birthdays, all"}));
}

TEST_F(CalendarRootReaderTests, otherLooseFilesAreOneCalendarNamedAsTheRoot) {
    root.write("a.ics", smallFile({smallEvent("a", "A")}));
    root.write("b.ics", smallFile({smallEvent("b", "B")}));
    root.write("many.ics", smallFile({smallEvent("c", "C"), smallEvent("d", "D")}));
    root.write("work/e.ics", smallFile({smallEvent("e", "E")}));
    auto subject = reader();
    EXPECT_EQ(calendars(subject), (Texts{"r1/. = My root", "r1/many.ics = many", "r1/work = work"}));
    EXPECT_EQ(events(subject),
              (Texts{"r1/.: A", "r1/.: B", "r1/many.ics: C", "r1/many.ics: D", "r1/work: E"}));
}

TEST_F(CalendarRootReaderTests, anEventWithItsChangedOccurrencesMakesNoCalendarOfItsOwn) {
    root.write("a.ics",
               smallFile({"BEGIN:VEVENT\r\nUID:a\r\nDTSTART:20260310T090000Z\r\nRRULE:FREQ=DAILY;COUNT=2\r\n"
                          "SUMMARY:A\r\nEND:VEVENT\r\n",
                          "BEGIN:VEVENT\r\nUID:a\r\nRECURRENCE-ID:20260311T090000Z\r\n"
                          "DTSTART:20260312T090000Z\r\nSUMMARY:A moved\r\nEND:VEVENT\r\n"}));
    auto subject = reader();
    EXPECT_EQ(calendars(subject), (Texts{"r1/. = My root"}));
    EXPECT_EQ(events(subject), (Texts{"r1/.: A", "r1/.: A moved"}));
}

TEST_F(CalendarRootReaderTests, aRootThatIsACalendarItselfSaysItsNameAndColour) {
    root.write("a.ics", smallFile({smallEvent("a", "A")}));
    root.write("displayname", "Private");
    root.write("color", "#0000FF");
    auto subject = reader();
    EXPECT_EQ(calendars(subject), (Texts{"r1/. = Private"}));
    EXPECT_EQ(colorOf(subject), (std::vector<double>{0, 0, 1, 1}));
}

TEST_F(CalendarRootReaderTests, deeperFoldersAndHiddenOnesAreLeftOutWithAReason) {
    root.write("work/a.ics", smallFile({smallEvent("a", "A")}));
    root.write("work/old/b.ics", smallFile({smallEvent("b", "B")}));
    root.write("archive/2020/c.ics", smallFile({smallEvent("c", "C")}));
    root.write(".trash/d.ics", smallFile({smallEvent("d", "D")}));
    root.write("work/.e.ics", smallFile({smallEvent("e", "E")}));
    auto subject = reader();
    EXPECT_EQ(events(subject), (Texts{"r1/work: A"}));
    EXPECT_EQ(problems(subject, StoreProblem::Effect::ignored),
              (Texts{".trash: hidden files and folders are not read",
                     "archive/2020: folders inside a calendar's folder are not read",
                     "work/.e.ics: hidden files and folders are not read",
                     "work/old: folders inside a calendar's folder are not read"}));
}

TEST_F(CalendarRootReaderTests, whatCannotBeReadIsNamedAndCostsNothingElse) {
    root.write("work/a.ics", smallFile({smallEvent("a", "A")}));
    ASSERT_EQ(::mkfifo((root / "work/pipe.ics").c_str(), 0600), 0);
    std::filesystem::create_symlink("gone", root / "work/z.ics");
    ASSERT_EQ(::mkfifo((root / "loose.ics").c_str(), 0600), 0);
    auto subject = reader();
    EXPECT_EQ(events(subject), (Texts{"r1/work: A"}));
    EXPECT_EQ(problems(subject),
              (Texts{"loose.ics: it could not be read: it is not a regular file",
                     "work/z.ics: it is a link that leads nowhere (No such file or directory)",
                     "work/pipe.ics: it could not be read: it is not a regular file"}));
}

TEST_F(CalendarRootReaderTests, aBrokenEventIsNamedWithItsLineAndCostsNoNeighbour) {
    root.write("work/a.ics", smallFile({"BEGIN:VEVENT\r\nUID:broken\r\nDTSTART:yesterday\r\nEND:VEVENT\r\n",
                                        smallEvent("a", "A")}));
    root.write("work/b.ics", std::string("\xff\xfe\0\0 no calendar at all", 24));
    root.write("work/c.ics", "");
    auto subject = reader();
    EXPECT_EQ(events(subject), (Texts{"r1/work: A"}));
    auto const found = problems(subject);
    EXPECT_TRUE(std::ranges::any_of(found, [](auto const& text) { return text.starts_with("work/a.ics:"); }))
        << testing::PrintToString(found);
}

TEST_F(CalendarRootReaderTests, aFolderThatIsInTheWayOfAFileIsNoFile) {
    root.write("work/a.ics/inner.ics", smallFile({smallEvent("b", "B")}));
    root.write("work/c.ics", smallFile({smallEvent("c", "C")}));
    auto subject = reader();
    EXPECT_EQ(events(subject), (Texts{"r1/work: C"}));
}

TEST_F(CalendarRootReaderTests, aVanishedRootHasNoCalendarsAndAReason) {
    root.write("work/a.ics", smallFile({smallEvent("a", "A")}));
    auto subject = reader();
    EXPECT_EQ(calendars(subject).size(), 1U);
    std::filesystem::remove_all(root.path());
    EXPECT_EQ(calendars(subject), Texts{});
    EXPECT_EQ(events(subject), Texts{});
    EXPECT_EQ(subject.failure(), std::errc::no_such_file_or_directory);
    EXPECT_EQ(problems(subject),
              (Texts{".: the folder could not be opened, so none of its calendars is shown: No "
                     "such file or directory"}));
    root.write("work/a.ics", smallFile({smallEvent("a", "A again")}));
    EXPECT_EQ(events(subject), (Texts{"r1/work: A again"}));
    EXPECT_EQ(subject.failure(), std::nullopt);
}

TEST_F(CalendarRootReaderTests, aRootThatIsAFileIsNamed) {
    root.write("file", "");
    CalendarRootReader subject({.kind = "folder", .id = "r1", .path = root / "file", .title = "File"},
                               RootLayout::folderOfCalendars, std::make_shared<ICalendar::ZoneCatalog>());
    EXPECT_EQ(calendars(subject), Texts{});
    EXPECT_EQ(subject.failure(), std::errc::not_a_directory);
}

TEST_F(CalendarRootReaderTests, aFolderNamedInOtherBytesThanUTF8IsStillACalendar) {
    root.write("caf\xe9/a.ics", smallFile({smallEvent("a", "A")}));
    root.write("caf\xe8/b.ics", smallFile({smallEvent("b", "B")}));
    auto subject = reader();
    EXPECT_EQ(calendars(subject), (Texts{"r1/caf\xEF\xBF\xBD = caf\xEF\xBF\xBD"}));
    EXPECT_EQ(events(subject), (Texts{"r1/caf\xEF\xBF\xBD: B"}));
    EXPECT_EQ(problems(subject).size(), 1U);
}

TEST_F(CalendarRootReaderTests, ofTwoLooseFilesWhoseNamesReadAlikeOneIsSkippedWithAReason) {
    root.write("caf\xe8.ics", smallFile({smallEvent("a", "A"), smallEvent("b", "B")}));
    root.write("caf\xe9.ics", smallFile({smallEvent("c", "C"), smallEvent("d", "D")}));
    auto subject = reader();
    EXPECT_EQ(calendars(subject), (Texts{"r1/caf\xEF\xBF\xBD.ics = caf\xEF\xBF\xBD"}));
    EXPECT_EQ(events(subject), (Texts{"r1/caf\xEF\xBF\xBD.ics: A", "r1/caf\xEF\xBF\xBD.ics: B"}));
    EXPECT_EQ(
        problems(subject),
        (Texts{"caf\xEF\xBF\xBD.ics: its name is not valid UTF-8 and reads as another calendar's; rename "
               "it to see it"}));
}

TEST_F(CalendarRootReaderTests, aSingleCalendarIsThereAlsoWhenItIsEmpty) {
    auto subject = reader(RootLayout::singleCalendar);
    EXPECT_EQ(calendars(subject), (Texts{"r1 = My root"}));
    root.write("a.ics", smallFile({smallEvent("a", "A"), smallEvent("b", "B")}));
    EXPECT_EQ(calendars(subject), (Texts{"r1 = My root"}));
    EXPECT_EQ(events(subject), (Texts{"r1: A", "r1: B"}));
}

TEST_F(CalendarRootReaderTests, anUnchangedFileIsReadOnce) {
    root.write("work/a.ics", smallFile({smallEvent("a", "A")}));
    root.write("work/b.ics", smallFile({smallEvent("b", "B")}));
    root.write("loose.ics", smallFile({smallEvent("c", "C")}));
    auto subject = reader();
    for (int query = 0; query < 3; ++query)
        EXPECT_EQ(events(subject).size(), 3U);
    EXPECT_EQ(subject.reads(), 3);
}

TEST_F(CalendarRootReaderTests, onlyTheCalendarsAskedForAreRead) {
    root.write("work/a.ics", smallFile({smallEvent("a", "A")}));
    root.write("home/b.ics", smallFile({smallEvent("b", "B")}));
    auto subject = reader();
    EXPECT_EQ(events(subject, later(), Texts{"r1/home"}), (Texts{"r1/home: B"}));
    EXPECT_EQ(subject.reads(), 1);
}

TEST_F(CalendarRootReaderTests, aRewriteInPlaceOfTheSameSizeIsSeen) {
    root.write("work/a.ics", smallFile({smallEvent("a", "Old")}));
    root.write("work/b.ics", smallFile({smallEvent("b", "B")}));
    auto subject = reader();
    EXPECT_EQ(events(subject), (Texts{"r1/work: Old", "r1/work: B"}));
    auto const before = *stampOfRegularFile(root / "work/a.ics");
    root.write("work/a.ics", smallFile({smallEvent("a", "New")}));
    auto const after = *stampOfRegularFile(root / "work/a.ics");
    ASSERT_EQ(after.size, before.size);
    ASSERT_EQ(after.inode, before.inode);
    EXPECT_EQ(events(subject, second), (Texts{"r1/work: New", "r1/work: B"}));
}

TEST_F(CalendarRootReaderTests, aFileTooYoungToBeTrustedIsReadAgain) {
    root.write("work/a.ics", smallFile({smallEvent("a", "A")}));
    auto subject = reader();
    auto const stamp = *stampOfRegularFile(root / "work/a.ics");
    EXPECT_EQ(events(subject, stamp.changed), (Texts{"r1/work: A"}));
    EXPECT_EQ(subject.reads(), 1);
    EXPECT_EQ(events(subject, stamp.changed + 2 * second), (Texts{"r1/work: A"}));
    EXPECT_EQ(subject.reads(), 2);
    EXPECT_EQ(events(subject, stamp.changed + 2 * second), (Texts{"r1/work: A"}));
    EXPECT_EQ(subject.reads(), 2);
}

TEST_F(CalendarRootReaderTests, filesThatCameWentOrWereReplacedAreSeen) {
    root.write("work/b.ics", smallFile({smallEvent("b", "B")}));
    auto subject = reader();
    EXPECT_EQ(events(subject), (Texts{"r1/work: B"}));

    root.write("aside", smallFile({smallEvent("b", "B2")}));
    std::filesystem::rename(root / "aside", root / "work/b.ics");
    root.write("work/a.ics", smallFile({smallEvent("a", "A")}));
    root.write("work/c.ics", smallFile({smallEvent("c", "C")}));
    EXPECT_EQ(events(subject), (Texts{"r1/work: A", "r1/work: B2", "r1/work: C"}));

    std::filesystem::remove(root / "work/b.ics");
    EXPECT_EQ(events(subject), (Texts{"r1/work: A", "r1/work: C"}));

    std::filesystem::rename(root / "work", root / "office");
    EXPECT_EQ(events(subject), (Texts{"r1/office: A", "r1/office: C"}));

    std::filesystem::remove(root / "office/a.ics");
    std::filesystem::remove(root / "office/c.ics");
    EXPECT_EQ(calendars(subject), Texts{});
}

TEST_F(CalendarRootReaderTests, aLooseFileMovesBetweenCalendarsAsItsContentChanges) {
    root.write("a.ics", smallFile({smallEvent("a", "A")}));
    auto subject = reader();
    EXPECT_EQ(events(subject), (Texts{"r1/.: A"}));
    root.write("a.ics", smallFile({smallEvent("a", "A"), smallEvent("b", "B")}));
    EXPECT_EQ(events(subject), (Texts{"r1/a.ics: A", "r1/a.ics: B"}));
    root.write("a.ics", smallFile({smallEvent("b", "B")}));
    EXPECT_EQ(events(subject), (Texts{"r1/.: B"}));
}

TEST_F(CalendarRootReaderTests, ofOneEventInTwoFilesTheHigherSequenceWins) {
    root.write("work/a.ics", smallFile({smallEvent("a", "Newer\r\nSEQUENCE:2")}));
    root.write("work/b.ics", smallFile({smallEvent("a", "Older\r\nSEQUENCE:1")}));
    auto subject = reader();
    EXPECT_EQ(events(subject), (Texts{"r1/work: Newer"}));
}

TEST_F(CalendarRootReaderTests, ofTwoEventsOfOneUIDAndSequenceTheOneNotShownIsNamed) {
    root.write("work/a.ics", smallFile({smallEvent("a", "Earlier file"), smallEvent("n", "Neighbour")}));
    root.write("work/b.ics", smallFile({smallEvent("b", "B"), smallEvent("a", "Later file")}));
    Texts const lost{"work/a.ics:4: the event in " + (root / "work/b.ics").string() +
                     ":11 has the same UID and SEQUENCE and is shown instead; give one of them a UID of its "
                     "own to see both"};
    auto subject = reader();
    EXPECT_EQ(events(subject), (Texts{"r1/work: Later file", "r1/work: Neighbour", "r1/work: B"}));
    EXPECT_TRUE(subject.takeProblems().empty()) << "who asks for events would be told each time";
    auto const found = subject.problems(later());
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].effect, StoreProblem::Effect::skipped);
    EXPECT_EQ(found[0].path, root / "work/a.ics");
    EXPECT_EQ(found[0].line, 4);
    EXPECT_EQ(problems(subject), lost);
}

TEST_F(CalendarRootReaderTests, anEventThatIsLostWithinALargeFileIsNamedByItsLineThere) {
    std::vector<std::string> all{smallEvent("a", "First")};
    for (int number = 0; number < 800; ++number)
        all.push_back(smallEvent(std::to_string(number), "Filling", "20250311T090000Z"));
    all.push_back(smallEvent("a", "Second"));
    root.write("large.ics", smallFile(all));
    Texts const lost{"large.ics:4: the event in " + (root / "large.ics").string() +
                     ":5611 has the same UID and SEQUENCE and is shown instead; give one of them a UID of "
                     "its own to see both"};
    auto subject = reader();
    EXPECT_EQ(events(subject), (Texts{"r1/large.ics: Second"}));
    EXPECT_TRUE(subject.takeProblems().empty());
    auto const found = subject.problems(later());
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].line, 4);
    EXPECT_EQ(problems(subject), lost);
}

TEST_F(CalendarRootReaderTests, aCopyARevisionAndAnotherCalendarsEventLoseNothing) {
    root.write("work/a.ics", smallFile({smallEvent("a", "A"), smallEvent("r", "Older\r\nSEQUENCE:1")}));
    root.write("work/b.ics", smallFile({smallEvent("a", "A"), smallEvent("r", "Newer\r\nSEQUENCE:2")}));
    root.write("home/a.ics", smallFile({smallEvent("a", "At home")}));
    root.write("one.ics", smallFile({smallEvent("a", "Loose"), smallEvent("b", "B")}));
    root.write("two.ics", smallFile({smallEvent("a", "Also loose"), smallEvent("b", "B")}));
    auto subject = reader();
    EXPECT_EQ(events(subject),
              (Texts{"r1/home: At home", "r1/one.ics: Loose", "r1/one.ics: B", "r1/two.ics: Also loose",
                     "r1/two.ics: B", "r1/work: A", "r1/work: Newer"}));
    EXPECT_TRUE(subject.takeProblems().empty());
    EXPECT_EQ(problems(subject), Texts{});
}

TEST_F(CalendarRootReaderTests, theSameEventInTwoCalendarsIsInBoth) {
    root.write("work/a.ics", smallFile({smallEvent("a", "A")}));
    root.write("home/a.ics", smallFile({smallEvent("a", "A")}));
    auto subject = reader();
    EXPECT_EQ(events(subject), (Texts{"r1/home: A", "r1/work: A"}));
    auto const event = subject.event("r1/work:a", Foundation::TimeZone::utc(), later());
    ASSERT_TRUE(event.has_value());
    EXPECT_EQ(event->calendar->calendarIdentifier, "r1/work");
}

TEST_F(CalendarRootReaderTests, anEventIsFoundAlsoWhereNamesHoldColons) {
    root.write("a/x.ics", smallFile({smallEvent("b:c", "In a")}));
    root.write("a:b/x.ics", smallFile({smallEvent("d", "In a:b")}));
    auto subject = reader();
    auto const utc = Foundation::TimeZone::utc();
    EXPECT_EQ(subject.event("r1/a:b:c", utc, later())->title, "In a");
    EXPECT_EQ(subject.event("r1/a:b:d", utc, later())->title, "In a:b");
    EXPECT_FALSE(subject.event("r1/a:d", utc, later()).has_value());
}

TEST_F(CalendarRootReaderTests, theRecordOfAnEventIsWhole) {
    root.write(
        "work/a.ics",
        smallFile({"BEGIN:VEVENT\r\nUID:u1\r\nDTSTAMP:20260101T000000Z\r\nDTSTART:20260311T090000Z\r\n"
                   "DTEND:20260311T103000Z\r\nSUMMARY:Stand-up\\, short\r\nDESCRIPTION:One\\nTwo\r\n"
                   "LOCATION:Room 4\r\nURL:https://example.org/a?b=c\r\n"
                   "RRULE:FREQ=WEEKLY;INTERVAL=2;BYDAY=MO,WE;UNTIL=20260401T000000Z\r\nEND:VEVENT\r\n"}));
    auto subject = reader();
    auto const event = subject.event("r1/work:u1", Foundation::TimeZone::utc(), later());
    ASSERT_TRUE(event.has_value());
    EXPECT_EQ(event->eventIdentifier, "r1/work:u1");
    EXPECT_EQ(event->calendarItemIdentifier, "u1");
    EXPECT_EQ(event->title, "Stand-up, short");
    EXPECT_EQ(event->notes, "One\nTwo");
    EXPECT_EQ(event->location, "Room 4");
    EXPECT_EQ(event->url->absoluteString, "https://example.org/a?b=c");
    EXPECT_EQ(event->startDate->secondsSince1970, 1773219600);
    EXPECT_EQ(event->endDate->secondsSince1970, 1773225000);
    EXPECT_FALSE(event->isAllDay);
    EXPECT_EQ(event->occurrenceKey, "20260311T090000Z");
    EXPECT_EQ(event->sourceFile, (root / "work/a.ics").string());
    EXPECT_EQ(event->sourceLine, 4);
    EXPECT_EQ(event->recurrenceRules,
              (std::vector<EKRecurrenceRule>{{.frequency = EKRecurrenceFrequency::weekly,
                                              .interval = 2,
                                              .daysOfTheWeek = {{.dayOfTheWeek = 2}, {.dayOfTheWeek = 4}},
                                              .endDate = Foundation::Date{1775001600}}}));
}

TEST_F(CalendarRootReaderTests, absentAndBlankTextsAreAbsent) {
    root.write("work/a.ics", smallFile({"BEGIN:VEVENT\r\nUID:a\r\nDTSTART:20260311T090000Z\r\nSUMMARY: \r\n"
                                        "DESCRIPTION:\r\nURL:not a link\\:\r\nEND:VEVENT\r\n"}));
    auto subject = reader();
    auto const event = subject.event("r1/work:a", Foundation::TimeZone::utc(), later());
    ASSERT_TRUE(event.has_value());
    EXPECT_EQ(event->title, std::nullopt);
    EXPECT_EQ(event->notes, std::nullopt);
    EXPECT_EQ(event->location, std::nullopt);
    EXPECT_EQ(event->occurrenceKey, std::nullopt);
}

TEST_F(CalendarRootReaderTests, aChangedOccurrenceIsASingleEventOfTheSeries) {
    root.write(
        "work/a.ics",
        smallFile({"BEGIN:VEVENT\r\nUID:a\r\nDTSTART:20260310T090000Z\r\nRRULE:FREQ=DAILY;COUNT=2\r\n"
                   "SUMMARY:A\r\nEND:VEVENT\r\n",
                   "BEGIN:VEVENT\r\nUID:a\r\nRECURRENCE-ID:20260311T090000Z\r\nDTSTART:20260312T090000Z\r\n"
                   "SUMMARY:A moved\r\nEND:VEVENT\r\n"}));
    auto subject = reader();
    std::vector<EKEvent> found;
    subject.appendEvents({.start = {0}, .end = {2e9}, .calendars = std::nullopt}, Foundation::TimeZone::utc(),
                         later(), found);
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].recurrenceRules.size(), 1U);
    EXPECT_TRUE(found[1].recurrenceRules.empty());
    EXPECT_EQ(found[1].eventIdentifier, found[0].eventIdentifier);
    EXPECT_EQ(found[1].occurrenceKey, "20260311T090000Z");
    EXPECT_EQ(found[1].startDate->secondsSince1970, 1773306000);
}

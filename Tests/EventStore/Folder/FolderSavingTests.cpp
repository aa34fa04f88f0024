#include "Tests/EventStore/Folder/ClosedDoors.h"
#include "Tests/EventStore/Folder/SavingFixtures.h"

#include <sys/stat.h>

using namespace Platform;

namespace {

ino_t inodeOf(std::filesystem::path const& file) {
    struct stat status{};
    EXPECT_EQ(::stat(file.c_str(), &status), 0);
    return status.st_ino;
}

std::string const manyHead = "X-WR-CALNAME:Many\r\n";

} // namespace

TEST(FolderSavingTests, aNewEventGetsAFileOfItsOwnNamedByItsUID) {
    SavingFixture const world;
    world.home.write("Root/work/a.ics", smallFile({smallEvent("a", "A")}));
    auto const store = world.store();
    auto event = newEvent(*store, "work", "New");
    store->save(event, EKSpan::thisEvent);
    auto const uid = event.calendarItemIdentifier.value();
    auto contents = world.contents();
    EXPECT_EQ(contents.size(), 2U);
    EXPECT_EQ(
        contents["work/" + uid + ".ics"],
        "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Quillora//Quillora//EN\r\nCALSCALE:GREGORIAN\r\n"
        "BEGIN:VEVENT\r\nUID:" +
            uid +
            "\r\nDTSTAMP:20961002T070640Z\r\nCREATED:20961002T070640Z\r\nLAST-MODIFIED:20961002T070640Z\r\n"
            "DTSTART:20260312T120000Z\r\nDTEND:20260312T130000Z\r\nSUMMARY:New\r\nEND:VEVENT\r\n"
            "END:VCALENDAR\r\n");
    EXPECT_EQ(event.sourceFile, (world.root() / "work" / (uid + ".ics")).string());
    EXPECT_EQ(marchTitles(*store), (std::vector<std::string>{"A", "New"}));
    EXPECT_EQ(marchTitles(*world.store()), (std::vector<std::string>{"A", "New"}));
}

TEST(FolderSavingTests, aNewEventIsOnTheViewersClockWithItsRules) {
    SavingFixture const world("America/New_York");
    world.home.write("Root/work/a.ics", smallFile({smallEvent("a", "A")}));
    auto const store = world.store();
    auto event = newEvent(*store, "work", "New");
    store->save(event, EKSpan::thisEvent);
    auto const content = world.contents()["work/" + event.calendarItemIdentifier.value() + ".ics"];
    EXPECT_NE(content.find("BEGIN:VTIMEZONE\r\nTZID:America/New_York\r\nBEGIN:DAYLIGHT\r\n"
                           "DTSTART:20250309T020000\r\nTZOFFSETFROM:-0500\r\nTZOFFSETTO:-0400\r\n"
                           "RRULE:FREQ=YEARLY;BYMONTH=3;BYDAY=2SU\r\nEND:DAYLIGHT\r\nBEGIN:STANDARD\r\n"
                           "DTSTART:20251102T020000\r\nTZOFFSETFROM:-0400\r\nTZOFFSETTO:-0500\r\n"
                           "RRULE:FREQ=YEARLY;BYMONTH=11;BYDAY=1SU\r\nEND:STANDARD\r\nEND:VTIMEZONE\r\n"),
              std::string::npos)
        << content;
    EXPECT_NE(content.find("DTSTART;TZID=America/New_York:20260312T080000\r\n"), std::string::npos)
        << content;
}

TEST(FolderSavingTests, whatIsSavedIsWhatIsReadLater) {
    SavingFixture const world("Europe/Madrid");
    world.home.write("Root/work/a.ics", smallFile({smallEvent("a", "A")}));
    auto const store = world.store();
    auto event = newEvent(*store, "work", "  New\r\nand\x01 more  ");
    event.notes = "";
    event.recurrenceRules = {{.frequency = EKRecurrenceFrequency::weekly,
                              .interval = 2,
                              .daysOfTheWeek = {{.dayOfTheWeek = 5}, {.dayOfTheWeek = 6}},
                              .occurrenceCount = 5}};
    store->save(event, EKSpan::thisEvent);
    auto const found = world.store()->eventWithIdentifier(*event.eventIdentifier);
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->title, event.title);
    EXPECT_EQ(found->title, "  New\nand more  ");
    EXPECT_EQ(found->notes, event.notes);
    EXPECT_EQ(found->startDate, event.startDate);
    EXPECT_EQ(found->endDate, event.endDate);
    EXPECT_EQ(found->recurrenceRules, event.recurrenceRules);
    EXPECT_EQ(found->occurrenceKey, event.occurrenceKey);
    EXPECT_EQ(found->occurrenceKey, "20260312T130000");
    EXPECT_EQ(found->sourceFile, event.sourceFile);
    EXPECT_EQ(found->sourceLine, event.sourceLine);
}

TEST(FolderSavingTests, aRuleThatEndsOnADayEndsThere) {
    SavingFixture const world("Europe/Madrid");
    world.home.write("Root/work/a.ics", smallFile({smallEvent("a", "A")}));
    auto const store = world.store();
    auto event = newEvent(*store, "work", "New");
    event.recurrenceRules = {{.frequency = EKRecurrenceFrequency::daily,
                              .endDate = event.startDate->addingTimeInterval(2 * 86'400)}};
    store->save(event, EKSpan::thisEvent);
    EXPECT_EQ(marchTitles(*world.store()), (std::vector<std::string>{"A", "New", "New", "New"}));
}

TEST(FolderSavingTests, inAFileOfManyEventsTheNewOneStandsAmongThem) {
    SavingFixture const world;
    auto const before = smallFile({smallEvent("a", "A"), smallEvent("b", "B")}, manyHead);
    world.home.write("Root/many.ics", before);
    auto const store = world.store();
    auto event = newEvent(*store, "Many", "New");
    store->save(event, EKSpan::thisEvent);
    auto const contents = world.contents();
    ASSERT_EQ(contents.size(), 1U);
    auto const& after = contents.at("many.ics");
    auto const kept = before.substr(0, before.size() - std::string("END:VCALENDAR\r\n").size());
    EXPECT_TRUE(after.starts_with(kept)) << after;
    EXPECT_TRUE(after.ends_with("SUMMARY:New\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n")) << after;
    EXPECT_EQ(marchTitles(*world.store()), (std::vector<std::string>{"A", "B", "New"}));
}

TEST(FolderSavingTests, aFileOfManyEventsStaysACalendarOfItsOwn) {
    SavingFixture const world;
    world.home.write("Root/many.ics", smallFile({smallEvent("a", "A"), smallEvent("b", "B")}));
    auto const store = world.store();
    auto const identifier = eventTitled(*store, "B").eventIdentifier;
    store->remove(eventTitled(*store, "A"), EKSpan::thisEvent);
    EXPECT_EQ(world.contents().at("many.ics"),
              smallFile({smallEvent("b", "B")}).insert(17, "X-WR-CALNAME:many\r\n"));
    EXPECT_EQ(eventTitled(*store, "B").eventIdentifier, identifier);
    store->remove(eventTitled(*store, "B"), EKSpan::thisEvent);
    EXPECT_EQ(world.contents().at("many.ics"), smallFile({}).insert(17, "X-WR-CALNAME:many\r\n"));
    auto event = newEvent(*store, "many", "Again");
    store->save(event, EKSpan::thisEvent);
    EXPECT_EQ(marchTitles(*store), (std::vector<std::string>{"Again"}));
}

TEST(FolderSavingTests, anEventsFileGoesWithItsLastEventAndOthersStay) {
    SavingFixture const world;
    world.home.write("Root/work/a.ics", smallFile({smallEvent("a", "A")}));
    world.home.write("Root/work/b.ics", smallFile({smallEvent("b", "B")}));
    auto const withTask =
        smallFile({smallEvent("c", "C"), "BEGIN:VTODO\r\nUID:task\r\nSUMMARY:Task\r\nEND:VTODO\r\n"});
    world.home.write("Root/work/c.ics", withTask);
    auto const store = world.store();
    store->remove(eventTitled(*store, "A"), EKSpan::thisEvent);
    store->remove(eventTitled(*store, "C"), EKSpan::thisEvent);
    auto const contents = world.contents();
    EXPECT_EQ(contents.size(), 2U);
    EXPECT_EQ(contents.at("work/b.ics"), smallFile({smallEvent("b", "B")}));
    EXPECT_EQ(contents.at("work/c.ics"),
              smallFile({"BEGIN:VTODO\r\nUID:task\r\nSUMMARY:Task\r\nEND:VTODO\r\n"}));
}

TEST(FolderSavingTests, aSeriesSpreadOverFilesIsEditedInEach) {
    SavingFixture const world;
    auto series = smallEvent("s", "Series");
    series.insert(series.find("SUMMARY"), "RRULE:FREQ=DAILY;COUNT=5\r\n");
    auto exception = smallEvent("s", "Special", "20260314T150000Z");
    exception.insert(exception.find("SUMMARY"), "RECURRENCE-ID:20260314T090000Z\r\n");
    world.home.write("Root/work/a.ics", smallFile({series}));
    world.home.write("Root/work/b.ics", smallFile({exception}));
    auto const store = world.store();
    auto event = marchEvents(*store).at(1);
    event.title = "Renamed";
    store->save(event, EKSpan::futureEvents);
    EXPECT_EQ(marchTitles(*world.store()),
              (std::vector<std::string>{"Series", "Renamed", "Renamed", "Special", "Renamed"}));
    auto const contents = world.contents();
    EXPECT_EQ(contents.size(), 2U);
    EXPECT_EQ(contents.count("work/b.ics"), 0U);
    EXPECT_EQ(contents.count("work/" + event.calendarItemIdentifier.value() + ".ics"), 1U);
    store->remove(event, EKSpan::futureEvents);
    EXPECT_EQ(marchTitles(*world.store()), (std::vector<std::string>{"Series"}));
    EXPECT_EQ(world.contents().size(), 1U);
}

TEST(FolderSavingTests, aRecordThatSaysNothingNewWritesNothing) {
    SavingFixture const world;
    auto series = smallEvent("a", "A");
    series.insert(series.find("SUMMARY"), "RRULE:FREQ=DAILY;COUNT=3;X-KEEP=1\r\n");
    auto const file = world.home.write("Root/work/a.ics", smallFile({series}));
    auto const store = world.store();
    auto const inode = inodeOf(file);
    for (auto const span : {EKSpan::thisEvent, EKSpan::futureEvents}) {
        auto event = marchEvents(*store).at(1);
        store->save(event, span);
    }
    EXPECT_EQ(inodeOf(file), inode);
    EXPECT_EQ(world.contents().at("work/a.ics"), smallFile({series}));
}

TEST(FolderSavingTests, whatAnotherProgramChangedIsThereAfterwards) {
    SavingFixture const world;
    world.home.write("Root/work/a.ics", smallFile({smallEvent("a", "A")}));
    auto const store = world.store();
    auto event = eventTitled(*store, "A");
    auto theirs = smallEvent("a", "A");
    theirs.insert(theirs.find("SUMMARY"), "X-THEIRS:1\r\nLOCATION:There\r\n");
    world.home.write("Root/work/a.ics", smallFile({theirs}));
    event.title = "Mine";
    event.location = std::nullopt;
    store->save(event, EKSpan::thisEvent);
    auto const content = world.contents().at("work/a.ics");
    EXPECT_NE(content.find("X-THEIRS:1\r\n"), std::string::npos);
    EXPECT_NE(content.find("SUMMARY:Mine\r\n"), std::string::npos);
}

TEST(FolderSavingTests, aClosedFolderIsRefusedInPlainWords) {
    SavingFixture const world;
    world.home.write("Root/work/a.ics", smallFile({smallEvent("a", "A")}));
    auto const store = world.store();
    auto event = eventTitled(*store, "A");
    auto added = newEvent(*store, "work", "New");
    auto const folder = (world.root() / "work").string();
    auto const before = world.contents();
    {
        OrdinaryUser const user(world.home.path());
        if (!user.isBoundByModes()) GTEST_SKIP() << "no user is bound by permissions here";
        ASSERT_EQ(::chmod(folder.c_str(), 0500), 0);
        event.title = "B";
        auto const text = "The folder " + folder + " may not be written to (Permission denied); ";
        EXPECT_EQ(refusalOf([&] { store->save(event, EKSpan::thisEvent); }),
                  text + "the event was not saved. Allow it, or choose another calendar.");
        EXPECT_EQ(refusalOf([&] { store->save(added, EKSpan::thisEvent); }),
                  text + "the event was not saved. Allow it, or choose another calendar.");
        EXPECT_EQ(refusalOf([&] { store->remove(event, EKSpan::thisEvent); }),
                  text + "nothing was removed. Allow it, or choose another calendar.");
        ASSERT_EQ(::chmod(folder.c_str(), 0700), 0);
    }
    EXPECT_EQ(world.contents(), before);
    EXPECT_EQ(added.eventIdentifier, std::nullopt);
}

TEST(FolderSavingTests, aReadOnlyFileIsRefusedInPlainWords) {
    SavingFixture const world;
    auto const file = world.home.write("Root/work/a.ics", smallFile({smallEvent("a", "A")}));
    auto const store = world.store();
    auto event = eventTitled(*store, "A");
    auto const before = world.contents();
    event.title = "B";
    ASSERT_EQ(::chmod(file.c_str(), 0444), 0);
    auto const text = "The file " + file.string() + " may not be written to (Permission denied); ";
    EXPECT_EQ(refusalOf([&] { store->save(event, EKSpan::thisEvent); }),
              text + "the event was not saved. Allow it, or choose another calendar.");
    EXPECT_EQ(refusalOf([&] { store->remove(event, EKSpan::thisEvent); }),
              text + "nothing was removed. Allow it, or choose another calendar.");
    EXPECT_EQ(world.contents(), before);
    ASSERT_EQ(::chmod(file.c_str(), 0644), 0);
    store->save(event, EKSpan::thisEvent);
    EXPECT_EQ(marchTitles(*world.store()), std::vector<std::string>{"B"});
}

TEST(FolderSavingTests, aNamedCalendarStaysWithoutAnyEvent) {
    SavingFixture const world;
    for (auto const* name : {"named", "coloured", "bare"})
        world.home.write(std::string("Root/") + name + "/a.ics", smallFile({smallEvent(name, name)}));
    world.home.write("Root/named/displayname", "Named\n");
    world.home.write("Root/coloured/color", "#102030\n");
    auto const store = world.store();
    for (auto const* name : {"named", "coloured", "bare"})
        store->remove(eventTitled(*store, name), EKSpan::thisEvent);
    std::vector<std::string> titles;
    auto const later = world.store();
    for (auto const& calendar : later->calendarsForEntityType(EKEntityType::event)) {
        EXPECT_TRUE(calendar.allowsContentModifications);
        EXPECT_TRUE(calendar.allowsContentModifications);
        titles.push_back(calendar.title);
    }
    EXPECT_NE(std::ranges::find(titles, "Named"), titles.end());
    EXPECT_NE(std::ranges::find(titles, "coloured"), titles.end());
    EXPECT_EQ(std::ranges::find(titles, "bare"), titles.end());
    EXPECT_TRUE(marchTitles(*later).empty());
    auto event = newEvent(*later, "Named", "New");
    later->save(event, EKSpan::thisEvent);
    EXPECT_EQ(marchTitles(*world.store()), std::vector<std::string>{"New"});
}

TEST(FolderSavingTests, aVanishedCalendarIsRefusedInPlainWords) {
    SavingFixture const world;
    world.home.write("Root/work/a.ics", smallFile({smallEvent("a", "A")}));
    auto const store = world.store();
    auto event = eventTitled(*store, "A");
    std::filesystem::remove_all(world.root() / "work");
    event.title = "B";
    EXPECT_EQ(refusalOf([&] { store->save(event, EKSpan::thisEvent); }),
              "The calendar \"work\" is no longer there; the event was not saved.");
    EXPECT_EQ(refusalOf([&] { store->remove(event, EKSpan::thisEvent); }),
              "The calendar \"work\" is no longer there; nothing was removed.");
    EXPECT_TRUE(world.contents().empty());
}

TEST(FolderSavingTests, nothingIsWrittenOutsideOfTheRoot) {
    SavingFixture const world;
    world.home.write("Elsewhere/a.ics", smallFile({smallEvent("a", "A")}));
    world.home.write("Root/work/a.ics", smallFile({smallEvent("a", "A")}));
    auto const store = world.store();
    auto event = newEvent(*store, "work", "New");
    for (auto const* name : {"/../Elsewhere", "/link", "/.", "/work/..", "/", ""}) {
        std::filesystem::create_directory_symlink(world.home / "Elsewhere", world.root() / "link");
        auto calendar = *event.calendar;
        calendar.calendarIdentifier = calendar.sourceIdentifier + name;
        auto attempt = event;
        attempt.calendar = std::make_shared<EKCalendar const>(calendar);
        auto const isOwn = std::string_view(name) == "/.";
        if (!isOwn) {
            EXPECT_EQ(refusalOf([&] { store->save(attempt, EKSpan::thisEvent); }),
                      "The calendar \"work\" is no longer there; the event was not saved.")
                << name;
        }
        std::filesystem::remove(world.root() / "link");
    }
}

TEST(FolderSavingTests, leftoversOfAKilledProcessAreGoneAfterASave) {
    SavingFixture const world;
    world.home.write("Root/work/a.ics", smallFile({smallEvent("a", "A")}));
    world.home.write("Root/work/.quillora-0123456789abcdef-0123456789abcdef-01234567-a.ics.tmp", "BEGIN");
    auto const store = world.store();
    auto event = eventTitled(*store, "A");
    event.title = "B";
    store->save(event, EKSpan::thisEvent);
    EXPECT_EQ(world.contents().size(), 1U);
}

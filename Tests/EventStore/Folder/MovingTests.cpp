// Events that go from one calendar into another.

#include "Tests/EventStore/Folder/ClosedDoors.h"
#include "Tests/EventStore/Folder/SavingFixtures.h"
#include "Tests/Platform/FaultScale.h"
#include "Tests/Platform/KilledProcess.h"

#include <sys/stat.h>

using namespace Platform;
using KilledProcess::Outcome;

namespace {

using Contents = std::map<std::string, std::string>;

constexpr auto ownZone = "BEGIN:VTIMEZONE\r\nTZID:Own Zone\r\nBEGIN:STANDARD\r\nDTSTART:19700101T000000\r\n"
                         "TZOFFSETFROM:+0200\r\nTZOFFSETTO:+0200\r\nEND:STANDARD\r\nEND:VTIMEZONE\r\n";

std::string const otherZone = [] {
    std::string text = ownZone;
    text.replace(text.find("TZOFFSETTO:+0200"), 16, "TZOFFSETTO:+0900");
    return text;
}();

// An event on a clock that only its file explains, with what no other program may lose.
std::string zonedEvent(std::string const& uid, std::string const& title) {
    return "BEGIN:VEVENT\r\nUID:" + uid +
           "\r\nDTSTAMP:20260101T000000Z\r\nDTSTART;TZID=Own Zone:20260311T090000\r\nDURATION:PT1H\r\n"
           "x-unknown;P=\"a;b\":fol\r\n ded\r\nSUMMARY:" +
           title + "\r\nBEGIN:VALARM\r\nTRIGGER:-PT5M\r\nACTION:AUDIO\r\nEND:VALARM\r\nEND:VEVENT\r\n";
}

// The event of that title in that calendar.
EKEvent eventIn(EKEventStore& store, std::string_view calendar, std::string_view title) {
    for (auto const& event : marchEvents(store)) {
        if (event.title == title && event.calendar->title == calendar) return event;
    }
    ADD_FAILURE() << "no event titled " << title << " in " << calendar;
    return {};
}

void moveTo(EKEventStore& store, EKEvent event, std::string_view calendar, EKSpan span = EKSpan::thisEvent) {
    event.calendar = calendarTitled(store, calendar);
    store.save(event, span);
}

void put(SavingFixture const& world, Contents const& contents) {
    for (auto const& entry : std::filesystem::directory_iterator(world.root()))
        std::filesystem::remove_all(entry.path());
    for (auto const& [name, content] : contents)
        world.home.write("Root/" + name, content);
}

Contents shownIn(Contents contents) {
    std::erase_if(contents, [](auto const& entry) {
        return std::filesystem::path(entry.first).filename().string().starts_with('.');
    });
    return contents;
}

// Two folders with an event each, and a calendar of one file.
Contents smallWorld() {
    return {{"work/own name.ics", smallFile({ownZone, zonedEvent("a", "A")}, "X-CALENDAR-NOTE:kept\r\n")},
            {"home/b.ics", smallFile({smallEvent("b", "B")})},
            {"many.ics",
             smallFile({ownZone, zonedEvent("m", "M"), smallEvent("n", "N")}, "X-WR-CALNAME:Many\r\n")}};
}

} // namespace

TEST(MovingTests, aFileOfOneEventGoesAsItIs) {
    SavingFixture const world;
    put(world, smallWorld());
    auto const store = world.store();
    moveTo(*store, eventIn(*store, "work", "A"), "home");
    auto expected = smallWorld();
    expected["home/own name.ics"] = expected.extract("work/own name.ics").mapped();
    EXPECT_EQ(world.contents(), expected);
    EXPECT_EQ(eventIn(*world.store(), "home", "A").startDate, Foundation::Date{1773212400});
}

TEST(MovingTests, aChangeOnTheWayTouchesItsOwnLinesOnly) {
    SavingFixture const world;
    put(world, smallWorld());
    auto const store = world.store();
    auto event = eventIn(*store, "work", "A");
    event.title = "Changed";
    event.calendar = calendarTitled(*store, "home");
    store->save(event, EKSpan::thisEvent);
    EXPECT_EQ(event.title, "Changed");
    EXPECT_EQ(event.sourceFile, (world.root() / "home/own name.ics").string());
    auto const contents = world.contents();
    auto const& content = contents.at("home/own name.ics");
    EXPECT_NE(content.find("x-unknown;P=\"a;b\":fol\r\n ded\r\nSUMMARY:Changed\r\n"), std::string::npos)
        << content;
    EXPECT_FALSE(contents.contains("work/own name.ics"));
}

TEST(MovingTests, outOfAFileOfManyComesTheEventWithItsZone) {
    SavingFixture const world;
    put(world, smallWorld());
    auto const store = world.store();
    moveTo(*store, eventIn(*store, "Many", "M"), "home");
    auto expected = smallWorld();
    expected["home/m.ics"] = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Quillora//Quillora//EN\r\n"
                             "CALSCALE:GREGORIAN\r\n" +
                             std::string(ownZone) + zonedEvent("m", "M") + "END:VCALENDAR\r\n";
    expected["many.ics"] = smallFile({ownZone, smallEvent("n", "N")}, "X-WR-CALNAME:Many\r\n");
    EXPECT_EQ(world.contents(), expected);
}

TEST(MovingTests, intoAFileOfManyGoTheEventAndTheZonesThatItLacks) {
    SavingFixture const world;
    auto const many = [](std::string const& added) {
        return "BEGIN:VCALENDAR\nVERSION:2.0\nX-WR-CALNAME:Many\n" + added + "END:VCALENDAR\n";
    };
    put(world, {{"work/a.ics", smallWorld()["work/own name.ics"]}, {"many.ics", many("")}});
    auto const store = world.store();
    moveTo(*store, eventIn(*store, "work", "A"), "Many");
    // Its lines end as the others of the file do.
    auto added = ownZone + zonedEvent("a", "A");
    std::erase(added, '\r');
    EXPECT_EQ(world.contents(), (Contents{{"many.ics", many(added)}}));
}

TEST(MovingTests, aSeriesGoesWithItsExceptionsWhereverTheyStand) {
    SavingFixture const world;
    auto series = smallEvent("s", "Series", "20260310T090000Z");
    series.insert(series.find("SUMMARY"), "RRULE:FREQ=DAILY;COUNT=5\r\n");
    auto exception = smallEvent("s", "Special", "20260309T150000Z");
    exception.insert(exception.find("SUMMARY"), "RECURRENCE-ID:20260313T090000Z\r\n");
    put(world, {{"work/1.ics", smallFile({series})},
                {"work/2.ics", smallFile({exception})},
                {"home/b.ics", smallFile({smallEvent("b", "B")})}});
    auto const store = world.store();
    auto const before = marchTitles(*store);
    // It is the first to happen, and the fourth of the rule.
    auto const first = store->eventWithIdentifier(*eventIn(*store, "work", "Series").eventIdentifier).value();
    EXPECT_EQ(first.title, "Special");
    moveTo(*store, first, "home", EKSpan::futureEvents);
    auto const contents = world.contents();
    EXPECT_EQ(contents.size(), 2U);
    EXPECT_EQ(contents.at("home/s.ics"),
              "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Quillora//Quillora//EN\r\nCALSCALE:GREGORIAN\r\n" +
                  series + exception + "END:VCALENDAR\r\n");
    EXPECT_EQ(marchTitles(*world.store()), before);
}

TEST(MovingTests, aNameThatIsTakenOrIsNoneGivesWayToAnother) {
    SavingFixture const world;
    std::string const foreignUID = "../../x/" + std::string(300, 'u');
    put(world, {{"work/b.ics", smallFile({smallEvent("a", "A")})},
                {"home/b.ics", smallFile({smallEvent("b", "B")})},
                {"many.ics", smallFile({smallEvent(foreignUID, "M"), smallEvent("n", "N")})}});
    auto const store = world.store();
    moveTo(*store, eventIn(*store, "work", "A"), "home");
    moveTo(*store, eventIn(*store, "many", "M"), "home");
    auto const contents = world.contents();
    EXPECT_EQ(contents.size(), 4U);
    EXPECT_EQ(contents.at("home/b.ics"), smallFile({smallEvent("b", "B")}));
    for (auto const* const title : {"A", "B", "M"})
        static_cast<void>(eventIn(*world.store(), "home", title));
}

TEST(MovingTests, whatAMoveThatWasCutShortLeftTwiceIsMovedByAnother) {
    SavingFixture const world;
    for (auto const* const target : {"home", "Many"}) {
        put(world, smallWorld());
        moveTo(*world.store(), eventIn(*world.store(), "work", "A"), target);
        auto const moved = world.contents();
        auto both = moved;
        both["work/own name.ics"] = smallWorld()["work/own name.ics"];
        put(world, both);
        moveTo(*world.store(), eventIn(*world.store(), "work", "A"), target);
        EXPECT_EQ(world.contents(), moved) << target;
    }
}

TEST(MovingTests, aMoveThatWouldLoseOrChangeSomethingIsRefused) {
    struct Refusal {
        char const* name;
        std::string file;
        std::string content;
        char const* target;
        std::string text;
    };
    for (auto const& row : std::vector<Refusal>{
             {"another version there", "home/a.ics", smallFile({smallEvent("a", "Other")}), "home",
              "The calendar \"home\" holds another version of the event already; it was not saved."},
             {"another zone of the same name there", "many.ics",
              smallFile({otherZone, smallEvent("n", "N")}, "X-WR-CALNAME:Many\r\n"), "Many",
              "The calendar \"Many\" explains the time zone \"Own Zone\" in another way; it was not saved."},
             {"a zone of the same name there that nothing explains", "many.ics",
              smallFile({zonedEvent("n", "N")}, "X-WR-CALNAME:Many\r\n"), "Many",
              "The calendar \"Many\" explains the time zone \"Own Zone\" in another way; it was not saved."},
         }) {
        SavingFixture const world;
        auto contents = smallWorld();
        contents[row.file] = row.content;
        put(world, contents);
        auto const store = world.store();
        auto const event = eventIn(*store, "work", "A");
        EXPECT_EQ(refusalOf([&] { moveTo(*store, event, row.target); }), row.text) << row.name;
        EXPECT_EQ(world.contents(), contents) << row.name;
    }
}

TEST(MovingTests, oneFileUnderTwoNamesIsNotMovedOntoItself) {
    SavingFixture const world;
    put(world, smallWorld());
    std::filesystem::create_hard_link(world.root() / "work/own name.ics", world.root() / "home/a.ics");
    auto const before = world.contents();
    auto const store = world.store();
    auto const event = eventIn(*store, "work", "A");
    EXPECT_EQ(refusalOf([&] { moveTo(*store, event, "home"); }),
              "The calendar \"home\" lies in the files that the event is in; it was not saved.");
    EXPECT_EQ(world.contents(), before);
}

TEST(MovingTests, aCalendarThatMayNotBeWrittenIsRefusedAndNothingMoves) {
    SavingFixture const world;
    put(world, smallWorld());
    auto const store = world.store();
    auto const event = eventIn(*store, "work", "A");
    auto const home = (world.root() / "home").string();
    auto const work = (world.root() / "work").string();
    {
        OrdinaryUser const user(world.home.path());
        if (!user.isBoundByModes()) GTEST_SKIP() << "no user is bound by permissions here";
        for (auto const& folder : {home, work}) {
            ASSERT_EQ(::chmod(folder.c_str(), 0500), 0);
            EXPECT_EQ(refusalOf([&] { moveTo(*store, event, "home"); }),
                      "The folder " + folder +
                          " may not be written to (Permission denied); the event was not saved. Allow it, or "
                          "choose another calendar.");
            ASSERT_EQ(::chmod(folder.c_str(), 0700), 0);
        }
    }
    EXPECT_EQ(world.contents(), smallWorld());
}

namespace {

// Moves A from work, unless that has been done.
bool runsMove(SavingFixture const& world, std::string_view target) {
    try {
        auto const store = world.store();
        for (auto const& event : marchEvents(*store)) {
            if (event.title == "A" && event.calendar->title == "work") moveTo(*store, event, target);
        }
        return true;
    } catch (std::exception const&) {
        return false;
    }
}

} // namespace

TEST(MovingFaultTests, aMoveKilledAtAnySystemCallLosesNothingAndIsCompletedByARepeat) {
    SavingFixture const world;
    auto const old = smallWorld();
    int const step = FaultScale::isFull() ? 1 : 43;
    for (auto const* const target : {"home", "Many"}) {
        put(world, old);
        ASSERT_TRUE(runsMove(world, target));
        auto const moved = world.contents();
        auto both = moved;
        both["work/own name.ics"] = old.at("work/own name.ics");
        bool sawBoth = false;
        auto outcome = Outcome::killed;
        for (int stop = 1; outcome == Outcome::killed; stop += step) {
            put(world, old);
            outcome = KilledProcess::killedAtSystemCall(stop, [&] { return runsMove(world, target); });
            if (outcome == Outcome::notPermitted) GTEST_SKIP() << "no process may be traced here";
            ASSERT_NE(outcome, Outcome::failed) << target << " at " << stop;
            auto const found = shownIn(world.contents());
            ASSERT_TRUE(found == old || found == both || found == moved) << target << " at " << stop;
            sawBoth = sawBoth || found == both;
            ASSERT_TRUE(runsMove(world, target)) << target << " at " << stop;
            ASSERT_EQ(shownIn(world.contents()), moved) << target << " at " << stop;
        }
        EXPECT_TRUE(sawBoth || !FaultScale::isFull()) << target;
    }
}

TEST(MovingFaultTests, anotherWritersChangeAtAnyMomentGoesAlong) {
    SavingFixture const world;
    auto const old = smallWorld();
    auto const file = world.root() / "work/own name.ics";
    int const step = FaultScale::isFull() ? 1 : 19;
    bool wasInterrupted = true;
    for (int stop = 1; wasInterrupted; stop += step) {
        put(world, old);
        bool wasThere = true;
        auto const outcome = KilledProcess::interruptedAtSystemCall(
            stop, [&] { return runsMove(world, "home"); },
            [&] {
                wasThere = std::filesystem::exists(file);
                if (!wasThere) return;
                auto content = old.at("work/own name.ics");
                content.insert(content.find("SUMMARY"), "X-THEIRS:1\r\n");
                auto const aside = world.home.write("aside", content);
                std::filesystem::rename(aside, file);
            },
            wasInterrupted);
        if (outcome == Outcome::notPermitted) GTEST_SKIP() << "no process may be traced here";
        ASSERT_EQ(outcome, Outcome::finished) << stop;
        auto const found = world.contents();
        ASSERT_EQ(found.size(), old.size()) << stop;
        ASSERT_TRUE(found.contains("home/own name.ics")) << stop;
        if (wasInterrupted && wasThere) {
            ASSERT_NE(found.at("home/own name.ics").find("X-THEIRS:1\r\n"), std::string::npos) << stop;
        }
    }
}

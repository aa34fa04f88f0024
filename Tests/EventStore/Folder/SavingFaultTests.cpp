// What becomes of the files when a save is killed, meets another writer, or finds no room.

#include "Platform/Clock/SystemClock.h"
#include "Tests/EventStore/Folder/SavingFixtures.h"
#include "Tests/Platform/FaultScale.h"
#include "Tests/Platform/KilledProcess.h"

#include <csignal>
#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>

using namespace Platform;
using KilledProcess::Outcome;

namespace {

constexpr std::int64_t farFuture = 4'000'000'000'000'000'000;

using Contents = std::map<std::string, std::string>;

// A series of five days, an exception on its fourth, and in the same file another event.
Contents smallWorld() {
    auto series = smallEvent("s", "Series", "20260310T090000Z");
    series.insert(series.find("SUMMARY"), "RRULE:FREQ=DAILY;COUNT=5\r\n");
    auto exception = smallEvent("s", "Special", "20260313T150000Z");
    exception.insert(exception.find("SUMMARY"), "RECURRENCE-ID:20260313T090000Z\r\n");
    return {{"work/a.ics", smallFile({smallEvent("a", "A")})},
            {"work/s.ics", smallFile({series, exception})},
            {"many.ics", smallFile({smallEvent("m", "M"), smallEvent("n", "N")}, "X-WR-CALNAME:Many\r\n")}};
}

void put(SavingFixture const& world, Contents const& contents) {
    for (auto const& entry : std::filesystem::directory_iterator(world.root()))
        std::filesystem::remove_all(entry.path());
    for (auto const& [name, content] : contents)
        world.home.write("Root/" + name, content);
}

bool isHidden(std::string const& name) {
    return std::filesystem::path(name).filename().string().starts_with('.');
}

Contents shownIn(Contents contents) {
    std::erase_if(contents, [](auto const& entry) { return isHidden(entry.first); });
    return contents;
}

// The second occurrence of the series.
EKEvent secondOfSeries(EKEventStore& store) {
    auto events = marchEvents(store);
    std::erase_if(events, [](EKEvent const& event) { return event.title != "Series"; });
    return events.at(1);
}

// One kind of save.
struct Save {
    char const* name;
    void (*run)(EKEventStore& store);
};

std::vector<Save> saves() {
    return {
        {"a change of an event's file",
         [](EKEventStore& store) {
             auto event = eventTitled(store, "A");
             event.title = "Changed";
             store.save(event, EKSpan::thisEvent);
         }},
        {"a change among many",
         [](EKEventStore& store) {
             auto event = eventTitled(store, "M");
             event.title = "Changed";
             store.save(event, EKSpan::thisEvent);
         }},
        {"an occurrence changed",
         [](EKEventStore& store) {
             auto event = secondOfSeries(store);
             event.title = "Changed";
             store.save(event, EKSpan::thisEvent);
         }},
        {"an occurrence removed",
         [](EKEventStore& store) { store.remove(eventTitled(store, "Special"), EKSpan::thisEvent); }},
        {"the rest of a series removed",
         [](EKEventStore& store) { store.remove(eventTitled(store, "Special"), EKSpan::futureEvents); }},
        {"an event removed",
         [](EKEventStore& store) { store.remove(eventTitled(store, "A"), EKSpan::thisEvent); }},
    };
}

bool runs(SavingFixture const& world, void (*save)(EKEventStore&)) {
    try {
        save(*world.store());
        return true;
    } catch (std::exception const&) {
        return false;
    }
}

// What another program does: it reads a file, adds a line to the first event, and puts the result in place.
void addLine(std::filesystem::path const& file, std::string const& line) {
    std::ifstream stream(file, std::ios::binary);
    std::string content{std::istreambuf_iterator<char>(stream), {}};
    auto const place = content.find("SUMMARY");
    if (place == std::string::npos) return;
    content.insert(place, line);
    auto const aside = file.string() + ".theirs";
    std::ofstream(aside, std::ios::binary) << content;
    std::filesystem::rename(aside, file);
}

} // namespace

TEST(SavingFaultTests, aSaveKilledAtAnySystemCallLeavesTheOldOrTheNew) {
    SavingFixture const world;
    auto const wanted = FaultScale::of(1000);
    auto const old = smallWorld();
    int kills = 0;
    // The first round goes from halt to halt in steps, so that a tenth of the kills is spread over all of it.
    int const step = FaultScale::isFull() ? 1 : 19;
    for (int round = 1; kills < wanted || round == 1; ++round) {
        ASSERT_LT(round, 100) << "too few system calls to be killed at";
        for (auto const& save : saves()) {
            put(world, old);
            ASSERT_TRUE(runs(world, save.run)) << save.name;
            auto const made = world.contents();
            ASSERT_NE(made, old) << save.name;
            bool sawOld = false;
            bool sawNew = false;
            auto outcome = Outcome::killed;
            for (int stop = round; outcome == Outcome::killed; stop += step) {
                put(world, old);
                outcome = KilledProcess::killedAtSystemCall(stop, [&] { return runs(world, save.run); });
                if (outcome == Outcome::notPermitted) GTEST_SKIP() << "no process may be traced here";
                ASSERT_NE(outcome, Outcome::failed) << save.name << " at " << stop;
                kills += outcome == Outcome::killed ? 1 : 0;
                auto const found = shownIn(world.contents());
                ASSERT_TRUE(found == old || found == made) << save.name << " at " << stop;
                (found == old ? sawOld : sawNew) = true;
                // The next process finds nothing in its way, and clears away what was left.
                CalendarFileWriter const next;
                next.clearLeftovers(world.root(), farFuture);
                next.clearLeftovers(world.root() / "work", farFuture);
                ASSERT_EQ(world.contents(), found) << save.name << " at " << stop;
                if (outcome == Outcome::killed && found == old) {
                    ASSERT_TRUE(runs(world, save.run)) << save.name << " at " << stop;
                    ASSERT_EQ(world.contents(), made) << save.name << " at " << stop;
                }
            }
            EXPECT_TRUE(sawOld) << save.name;
            EXPECT_TRUE(sawNew) << save.name;
        }
    }
    EXPECT_GE(kills, wanted);
}

// Its UID is different at each attempt, so what is compared is what else there is.
TEST(SavingFaultTests, aDivisionKilledAtAnySystemCallLosesNothing) {
    SavingFixture const world;
    auto const old = smallWorld();
    auto const divide = [](EKEventStore& store) {
        auto event = secondOfSeries(store);
        event.location = "Changed";
        store.save(event, EKSpan::futureEvents);
    };
    put(world, old);
    auto const sortedTitles = [&world] {
        auto titles = marchTitles(*world.store());
        std::ranges::sort(titles);
        return titles;
    };
    auto const before = sortedTitles();
    ASSERT_TRUE(runs(world, divide));
    auto const ended = world.contents().at("work/s.ics");
    ASSERT_EQ(sortedTitles(), before);
    int const step = FaultScale::isFull() ? 1 : 13;
    auto outcome = Outcome::killed;
    for (int stop = 1; outcome == Outcome::killed; stop += step) {
        put(world, old);
        outcome = KilledProcess::killedAtSystemCall(stop, [&] { return runs(world, divide); });
        if (outcome == Outcome::notPermitted) GTEST_SKIP() << "no process may be traced here";
        ASSERT_NE(outcome, Outcome::failed) << stop;
        auto found = shownIn(world.contents());
        auto const series = found.extract("work/s.ics").mapped();
        ASSERT_TRUE(series == old.at("work/s.ics") || series == ended) << stop;
        // The rest is there before the series ends, so that what happens is there once or twice.
        auto const rests = found.size() - (old.size() - 1);
        ASSERT_LE(rests, 1U) << stop;
        ASSERT_TRUE(series != ended || rests == 1) << stop;
        auto titles = sortedTitles();
        for (auto const& title : before) {
            auto const place = std::ranges::find(titles, title);
            ASSERT_NE(place, titles.end()) << title << " at " << stop;
            titles.erase(place);
        }
    }
}

TEST(SavingFaultTests, anotherWritersChangeAtAnyMomentIsThereBesideOurs) {
    SavingFixture const world;
    auto const old = smallWorld();
    auto const file = world.root() / "work/a.ics";
    int const step = FaultScale::isFull() ? 1 : 5;
    bool wasInterrupted = true;
    int stop = 1;
    for (; wasInterrupted; stop += step) {
        put(world, old);
        auto const outcome = KilledProcess::interruptedAtSystemCall(
            stop, [&] { return runs(world, saves().front().run); }, [&] { addLine(file, "X-THEIRS:1\r\n"); },
            wasInterrupted);
        if (outcome == Outcome::notPermitted) GTEST_SKIP() << "no process may be traced here";
        ASSERT_EQ(outcome, Outcome::finished) << stop;
        auto const found = world.contents();
        ASSERT_EQ(found.size(), old.size()) << stop;
        auto const& content = found.at("work/a.ics");
        ASSERT_NE(content.find("SUMMARY:Changed\r\n"), std::string::npos) << stop << '\n' << content;
        if (wasInterrupted) {
            ASSERT_NE(content.find("X-THEIRS:1\r\n"), std::string::npos) << stop << '\n' << content;
        }
    }
    EXPECT_GT(stop, 100);
}

TEST(SavingFaultTests, aRemovalNeverTakesWhatAnotherWriterHasAddedToTheFile) {
    SavingFixture const world;
    auto const old = smallWorld();
    auto const file = world.root() / "work/a.ics";
    // The other adds an event of its own to the file that the removal would delete.
    auto const interruption = [&] {
        std::ifstream stream(file, std::ios::binary);
        if (!stream) return;
        std::string content{std::istreambuf_iterator<char>(stream), {}};
        content.insert(content.rfind("END:VCALENDAR"), smallEvent("theirs", "Theirs"));
        std::ofstream(file.string() + ".theirs", std::ios::binary) << content;
        std::filesystem::rename(file.string() + ".theirs", file);
    };
    int const step = FaultScale::isFull() ? 1 : 5;
    bool wasInterrupted = true;
    for (int stop = 1; wasInterrupted; stop += step) {
        put(world, old);
        bool wasThere = true;
        auto const outcome = KilledProcess::interruptedAtSystemCall(
            stop, [&] { return runs(world, saves().back().run); },
            [&] {
                wasThere = std::filesystem::exists(file);
                interruption();
            },
            wasInterrupted);
        if (outcome == Outcome::notPermitted) GTEST_SKIP() << "no process may be traced here";
        ASSERT_EQ(outcome, Outcome::finished) << stop;
        auto const found = world.contents();
        bool const isExpected = wasInterrupted && wasThere;
        ASSERT_EQ(found.contains("work/a.ics"), isExpected) << stop;
        if (!isExpected) continue;
        ASSERT_EQ(found.at("work/a.ics"), smallFile({smallEvent("theirs", "Theirs")})) << stop;
    }
}

TEST(SavingFaultTests, aCalendarFileThatHasGoneMeanwhileIsNamed) {
    SavingFixture const world;
    put(world, smallWorld());
    auto const store = world.store();
    auto event = newEvent(*store, "Many", "New");
    std::filesystem::remove(world.root() / "many.ics");
    EXPECT_EQ(refusalOf([&] { store->save(event, EKSpan::thisEvent); }),
              "The calendar \"Many\" is no longer there; the event was not saved.");
}

TEST(SavingFaultTests, twoProcessesLoseNothingToEachOther) {
    SavingFixture const world;
    put(world, smallWorld());
    auto const each = FaultScale::of(100);
    {
        auto const adding = [&](std::string const& name) {
            return [&world, name, each](int time) {
                if (time > each) return false; // Not killed at work: what that leaves waits for a later save.
                auto const store = world.store(std::make_shared<SystemClock>());
                auto event = newEvent(*store, "Many", name + std::to_string(time));
                store->save(event, EKSpan::thisEvent);
                return true;
            };
        };
        KilledProcess::Repeating first(adding("first "));
        KilledProcess::Repeating second(adding("second "));
        ASSERT_TRUE(first.awaitDone(each));
        ASSERT_TRUE(second.awaitDone(each));
    }
    auto const titles = marchTitles(*world.store());
    for (auto const* name : {"first ", "second "}) {
        for (int time = 1; time <= each; ++time) {
            EXPECT_EQ(std::ranges::count(titles, name + std::to_string(time)), 1) << name << time;
        }
    }
}

namespace {

// A file system of that size of the process's own, at `place`. False where that is not permitted.
bool mountSmallDisk(std::filesystem::path const& place, std::string const& size) {
    auto const user = std::to_string(::geteuid());
    auto const group = std::to_string(::getegid());
    if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
    std::ofstream("/proc/self/setgroups") << "deny";
    std::ofstream("/proc/self/uid_map") << "0 " + user + " 1";
    std::ofstream("/proc/self/gid_map") << "0 " + group + " 1";
    return ::mount("none", place.c_str(), "tmpfs", 0, ("size=" + size).c_str()) == 0;
}

// Takes all but `pages` pages of the room that is left.
void fillDisk(std::filesystem::path const& folder, int pages) {
    auto const place = (folder / "filler").string();
    auto const file = ::open(place.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    std::string const page(4096, 'x');
    off_t length = 0;
    while (::write(file, page.data(), page.size()) == static_cast<ssize_t>(page.size()))
        length += static_cast<off_t>(page.size());
    static_cast<void>(::ftruncate(file, std::max<off_t>(length - pages * 4096, 0)));
    ::close(file);
}

// What is wrong with saves on a full disk; empty when nothing is.
std::string faultsOnFullDisk(SavingFixture const& world, int pagesLeft) {
    put(world, smallWorld());
    auto const store = world.store();
    auto changed = eventTitled(*store, "A");
    changed.notes = std::string(6000, 'n');
    auto added = newEvent(*store, "work", std::string(6000, 't'));
    fillDisk(world.root(), pagesLeft);
    auto const before = world.contents();
    std::string faults;
    auto const text = "There is no room left on the disk that holds " + (world.root() / "work").string() +
                      " (No space left on device); the event was not saved. Make room and try again.";
    for (auto* const event : {&changed, &added}) {
        auto const refusal = refusalOf([&] { store->save(*event, EKSpan::thisEvent); });
        if (refusal != text) faults += refusal + '\n';
        if (world.contents() != before) faults += "something was written\n";
    }
    std::filesystem::remove(world.root() / "filler");
    for (auto* const event : {&changed, &added}) {
        auto const refusal = refusalOf([&] { store->save(*event, EKSpan::thisEvent); });
        if (refusal != "nothing was refused") faults += "with room again: " + refusal + '\n';
    }
    return faults;
}

} // namespace

TEST(SavingFaultTests, aFullDiskIsRefusedInPlainWordsAndChangesNothing) {
    SavingFixture const world;
    constexpr int notPermitted = 77;
    auto const reportFile = world.home / "report";
    auto const child = ::fork();
    if (child == 0) {
        if (!mountSmallDisk(world.root(), "64k")) ::_exit(notPermitted);
        std::string faults;
        try {
            for (int pages = 0; pages < 2; ++pages)
                faults += faultsOnFullDisk(world, pages);
        } catch (std::exception const& error) {
            faults += error.what();
        }
        std::ofstream(reportFile) << faults;
        ::_exit(faults.empty() ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    if (WEXITSTATUS(status) == notPermitted) GTEST_SKIP() << "no file system may be mounted here";
    std::ifstream stream(reportFile);
    EXPECT_EQ(WEXITSTATUS(status), 0) << std::string(std::istreambuf_iterator<char>(stream), {});
}

#include "Platform/EventStore/Folder/FolderEventStore.h"

#include "Platform/Clock/FixedClock.h"
#include "Platform/Clock/FixedRegionSettings.h"
#include "Platform/EventStore/GivenConsentPrompt.h"
#include "Platform/Files/InMemoryFileManager.h"
#include "Platform/Files/PosixFileManager.h"
#include "Platform/Logging/RecordingLogSink.h"
#include "Tests/EventStore/Folder/ClosedDoors.h"
#include "Tests/EventStore/Folder/SmallCalendars.h"
#include "Tests/EventStore/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace Platform;

namespace {

using Texts = std::vector<std::string>;

class FolderEventStoreTests : public testing::Test {
protected:
    FolderEventStore store(std::string_view zone = "UTC") {
        return FolderEventStore({
            .places = places(),
            .files = files,
            .region = std::make_shared<FixedRegionSettings>(
                Foundation::Calendar(Foundation::TimeZone::named(zone).value()),
                Foundation::Locale{.identifier = "en"}),
            .fileSystemClock = std::make_shared<FixedClock>(Foundation::Date{4e9}),
            .prompt = prompt,
            .logger = Logger(log, "tests", "EventStore"),
        });
    }

    CalendarStorePlaces places() const {
        return {.configurationDirectory = home / "config", .nativeCalendar = home / "data/native"};
    }

    CalendarRoot add(std::string const& folder) const {
        std::filesystem::create_directories(home / folder);
        return CalendarStoreConfiguration(places().configurationDirectory, files)
            .add(home / folder, std::nullopt)
            .value();
    }

    static Texts titles(FolderEventStore& store) {
        Texts texts;
        for (auto const& event :
             store.eventsMatching({.start = {1772319600}, .end = {1774994400}, .calendars = std::nullopt})) {
            texts.push_back(event.title.value_or("untitled"));
        }
        return texts;
    }

    static Texts calendarTitles(FolderEventStore& store) {
        Texts texts;
        for (auto const& calendar : store.calendarsForEntityType(EKEntityType::event)) {
            texts.push_back(calendar.title);
        }
        return texts;
    }

    TemporaryFolder home;
    std::shared_ptr<FileManager const> files = std::make_shared<PosixFileManager>(Foundation::Environment());
    std::shared_ptr<GivenConsentPrompt> prompt = std::make_shared<GivenConsentPrompt>(ConsentAnswer::yes);
    std::shared_ptr<RecordingLogSink> log = std::make_shared<RecordingLogSink>();
};

} // namespace

TEST_F(FolderEventStoreTests, withoutAnyFolderItIsEmptyAndSilent) {
    auto subject = store();
    EXPECT_TRUE(subject.sources().empty());
    EXPECT_EQ(titles(subject), Texts{});
    EXPECT_EQ(subject.defaultCalendarForNewEvents(), std::nullopt);
    EXPECT_TRUE(subject.problems().empty());
    EXPECT_EQ(log->messages(), Texts{});
}

TEST_F(FolderEventStoreTests, sourcesStandInTheOrderOfTheListAndTheOwnCalendarFirst) {
    home.write("Zebra/z/a.ics", smallFile({smallEvent("a", "A")}));
    home.write("Apple/b/a.ics", smallFile({smallEvent("a", "A")}));
    home.write("Apple/a/a.ics", smallFile({smallEvent("a", "A")}));
    auto const zebra = add("Zebra");
    auto const apple = add("Apple");
    ASSERT_FALSE(createNativeCalendar(places(), *files));
    auto subject = store();
    auto const sources = subject.sources();
    ASSERT_EQ(sources.size(), 3U);
    EXPECT_EQ(sources[0].title, "Quillora");
    EXPECT_EQ(sources[0].sourceIdentifier, "quillora-native-calendar");
    EXPECT_EQ(sources[1].sourceIdentifier, zebra.id);
    EXPECT_EQ(sources[2].sourceIdentifier, apple.id);
    EXPECT_EQ(calendarTitles(subject), (Texts{"Quillora", "z", "a", "b"}));
}

TEST_F(FolderEventStoreTests, theOwnCalendarIsTheDefaultOnceItIsMade) {
    auto subject = store();
    EXPECT_EQ(subject.defaultCalendarForNewEvents(), std::nullopt);
    ASSERT_FALSE(createNativeCalendar(places(), *files));
    auto const calendar = subject.defaultCalendarForNewEvents();
    ASSERT_TRUE(calendar.has_value());
    EXPECT_EQ(calendar->calendarIdentifier, "quillora-native-calendar");
    EXPECT_EQ(calendar->title, "Quillora");
    EXPECT_TRUE(calendar->cgColor.components.has_value());

    home.write("data/native/a.ics", smallFile({smallEvent("u", "Mine")}));
    EXPECT_EQ(titles(subject), (Texts{"Mine"}));
    EXPECT_EQ(subject.eventWithIdentifier("quillora-native-calendar:u")->title, "Mine");
}

TEST_F(FolderEventStoreTests, makingTheOwnCalendarAgainChangesNothing) {
    ASSERT_FALSE(createNativeCalendar(places(), *files));
    home.write("data/native/displayname", "My own name");
    ASSERT_FALSE(createNativeCalendar(places(), *files));
    auto subject = store();
    EXPECT_EQ(calendarTitles(subject), (Texts{"My own name"}));
    struct stat status{};
    ASSERT_EQ(::stat((home / "data/native").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0700U);
}

TEST_F(FolderEventStoreTests, makingAHalfMadeOwnCalendarAgainAddsWhatIsMissing) {
    home.write("data/native/displayname", "My own name");
    ASSERT_FALSE(createNativeCalendar(places(), *files));
    auto subject = store();
    EXPECT_EQ(calendarTitles(subject), (Texts{"My own name"}));
    EXPECT_TRUE(subject.defaultCalendarForNewEvents()->cgColor.components.has_value());

    std::filesystem::remove(home / "data/native/displayname");
    ASSERT_FALSE(createNativeCalendar(places(), *files));
    EXPECT_EQ(calendarTitles(subject), (Texts{"Quillora"}));
}

TEST_F(FolderEventStoreTests, theOwnCalendarCannotBeMadeWhereAFileIsInTheWay) {
    home.write("data", "");
    EXPECT_TRUE(createNativeCalendar(places(), *files));
}

TEST_F(FolderEventStoreTests, eventsComeByStartAcrossCalendars) {
    home.write("One/x/a.ics", smallFile({smallEvent("a", "Third", "20260311T110000Z")}));
    home.write("One/y/a.ics", smallFile({smallEvent("a", "First", "20260311T090000Z")}));
    home.write("Two/z/a.ics", smallFile({smallEvent("a", "Second", "20260311T100000Z")}));
    home.write("Two/z/b.ics", smallFile({smallEvent("b", "Third too", "20260311T110000Z")}));
    add("One");
    add("Two");
    auto subject = store();
    EXPECT_EQ(titles(subject), (Texts{"First", "Second", "Third", "Third too"}));
}

TEST_F(FolderEventStoreTests, aSourceAddedOrRemovedMeanwhileIsFollowed) {
    home.write("One/x/a.ics", smallFile({smallEvent("a", "One")}));
    home.write("Two/x/a.ics", smallFile({smallEvent("a", "Two")}));
    auto const one = add("One");
    auto subject = store();
    EXPECT_EQ(titles(subject), (Texts{"One"}));
    add("Two");
    EXPECT_EQ(titles(subject), (Texts{"One", "Two"}));
    EXPECT_EQ(subject.fileReads(), 2);
    ASSERT_TRUE(
        CalendarStoreConfiguration(places().configurationDirectory, files).remove(one.id).has_value());
    EXPECT_EQ(titles(subject), (Texts{"Two"}));
}

TEST_F(FolderEventStoreTests, aMovedRootKeepsItsIdentifiers) {
    home.write("One/x/a.ics", smallFile({smallEvent("a", "A")}));
    auto const root = add("One");
    auto const before = store().calendarsForEntityType(EKEntityType::event);
    std::filesystem::rename(home / "One", home / "Elsewhere");
    auto const file = home / "config/calendar-store.json";
    auto document = files->contents(file, largestPreferenceFile).value();
    document.replace(document.find("One\""), 3, "Elsewhere");
    ASSERT_FALSE(files->writeAtomically(file, document));
    EXPECT_EQ(store().calendarsForEntityType(EKEntityType::event), before);
    EXPECT_EQ(before.at(0).calendarIdentifier, root.id + "/x");
}

TEST_F(FolderEventStoreTests, allDayAndFloatingEventsLieOnTheViewersClock) {
    home.write(
        "One/x/a.ics",
        smallFile({"BEGIN:VEVENT\r\nUID:a\r\nDTSTART;VALUE=DATE:20260311\r\nSUMMARY:Day\r\nEND:VEVENT\r\n",
                   smallEvent("b", "Floating", "20260311T090000")}));
    add("One");
    auto subject = store("Asia/Tokyo");
    auto const events =
        subject.eventsMatching({.start = {1773154800}, .end = {1773241200}, .calendars = std::nullopt});
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0].startDate->secondsSince1970, 1773154800);
    EXPECT_EQ(events[0].endDate->secondsSince1970, 1773241200);
    EXPECT_EQ(events[1].startDate->secondsSince1970, 1773187200);
}

TEST_F(FolderEventStoreTests, aLongTextEndsBetweenTwoCharacters) {
    std::string notes(64 * 1024 - 1, 'n');
    home.write("One/x/a.ics", smallFile({"BEGIN:VEVENT\r\nUID:a\r\nDTSTART:20260311T090000Z\r\nDESCRIPTION:" +
                                         notes + "\xC3\xA9 and more\r\nEND:VEVENT\r\n"}));
    add("One");
    auto subject = store();
    auto const events =
        subject.eventsMatching({.start = {1772319600}, .end = {1774994400}, .calendars = std::nullopt});
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].notes, notes);
}

TEST_F(FolderEventStoreTests, aLongTextEveryMinuteIsCutAndItsNeighboursAreShown) {
    constexpr std::size_t notes = 100 * 1000;
    home.write(
        "One/x/a.ics",
        smallFile({"BEGIN:VEVENT\r\nUID:a\r\nDTSTART:20260302T000000Z\r\nRRULE:FREQ=MINUTELY\r\nSUMMARY:"
                   "Bomb\r\nDESCRIPTION:" +
                       std::string(notes, 'n') + "\r\nEND:VEVENT\r\n",
                   smallEvent("b", "Neighbour", "20260330T090000Z")}));
    add("One");
    auto subject = store();
    auto const found = titles(subject);
    // 16 MiB hold 256 notes of 64 KiB; title and identifiers come to less than one more.
    EXPECT_EQ(found.size(), 257U);
    EXPECT_EQ(std::ranges::count(found, "Bomb"), 256);
    EXPECT_EQ(found.back(), "Neighbour");
    auto const reason =
        "its texts are too long for so many occurrences; only the first of the time asked for are "
        "shown";
    auto const messages = log->messages();
    EXPECT_EQ(std::ranges::count_if(messages,
                                    [&](std::string const& message) { return message.ends_with(reason); }),
              1);
}

TEST_F(FolderEventStoreTests, aVanishedFolderCostsOnlyItselfAndIsLoggedOnce) {
    home.write("One/x/a.ics", smallFile({smallEvent("a", "One")}));
    add("Gone");
    add("One");
    std::filesystem::remove(home / "Gone");
    auto subject = store();
    for (int query = 0; query < 3; ++query)
        EXPECT_EQ(titles(subject), (Texts{"One"}));
    EXPECT_EQ(subject.sources().size(), 2U);
    EXPECT_TRUE(subject.sources()[0].calendars.empty());
    auto const text =
        (home / "Gone").string() +
        ": the folder could not be opened, so none of its calendars is shown: No such file or directory";
    EXPECT_EQ(log->messages(), (Texts{text}));
    EXPECT_EQ(log->records()[0].level, LogLevel::error);
    ASSERT_EQ(subject.problems().size(), 1U);
    EXPECT_EQ(describe(subject.problems()[0]), text);
}

TEST_F(FolderEventStoreTests, aDamagedListIsLoggedAndTheOwnCalendarStillShown) {
    ASSERT_FALSE(createNativeCalendar(places(), *files));
    home.write("data/native/a.ics", smallFile({smallEvent("a", "Mine")}));
    home.write("config/calendar-store.json", "{ torn");
    auto subject = store();
    EXPECT_EQ(titles(subject), (Texts{"Mine"}));
    EXPECT_EQ(titles(subject), (Texts{"Mine"}));
    ASSERT_EQ(log->messages().size(), 1U);
    EXPECT_TRUE(log->messages()[0].contains("calendar-store.json: the list of calendar folders is damaged"))
        << log->messages()[0];
    EXPECT_EQ(files->contents(home / "config/calendar-store.json", largestPreferenceFile), "{ torn");
}

TEST_F(FolderEventStoreTests, aSourceThatCannotBeUsedIsNamedAndPassedOver) {
    home.write("One/x/a.ics", smallFile({smallEvent("a", "One")}));
    auto const entry = [](std::string_view kind, std::string_view id, std::string_view path,
                          std::string_view title) {
        return fmt::format(R"({{"kind":"{}","id":"{}","path":"{}","title":"{}"}})", kind, id, path, title);
    };
    auto const one = (home / "One").string();
    home.write("config/calendar-store.json",
               fmt::format(R"({{"version":1,"sources":[{},{},{},{},{}]}})",
                           entry("dataServer", "b2", "x", "Accounts"),
                           entry("folder", "c3", "~/One", "By hand"), entry("folder", "d4", one, "One"),
                           entry("folder", "d4", one, "Twice"),
                           entry("folder", "quillora-native-calendar", one, "Pretender")));
    auto subject = store();
    EXPECT_EQ(titles(subject), (Texts{"One"}));
    EXPECT_EQ(subject.sources().size(), 1U);
    Texts reasons;
    for (auto const& problem : subject.problems())
        reasons.push_back(problem.reason);
    EXPECT_EQ(
        reasons,
        (Texts{
            "the source \"Accounts\" is not shown: it is of the kind \"dataServer\", which this version "
            "cannot read",
            "the source \"By hand\" is not shown: its path ~/One is not absolute",
            "the source \"Twice\" is not shown: its id \"d4\" belongs to another source",
            "the source \"Pretender\" is not shown: its id \"quillora-native-calendar\" belongs to another "
            "source"}));
}

TEST_F(FolderEventStoreTests, leftOutByRuleIsInformationAndNoError) {
    home.write("One/x/a.ics", smallFile({smallEvent("a", "One")}));
    home.write("One/.git/config", "");
    add("One");
    auto subject = store();
    EXPECT_EQ(titles(subject), (Texts{"One"}));
    ASSERT_EQ(log->records().size(), 1U);
    EXPECT_EQ(log->records()[0].level, LogLevel::info);
}

TEST_F(FolderEventStoreTests, theAnswerToTheRequestIsRecorded) {
    struct Row {
        char const* name;
        ConsentAnswer answer;
        bool granted;
        EKAuthorizationStatus status;
    };
    for (auto const& row : std::vector<Row>{
             {"unavailable", ConsentAnswer::unavailable, false, EKAuthorizationStatus::notDetermined},
             {"no", ConsentAnswer::no, false, EKAuthorizationStatus::denied},
             {"yes", ConsentAnswer::yes, true, EKAuthorizationStatus::fullAccess},
         }) {
        prompt = std::make_shared<GivenConsentPrompt>(row.answer);
        auto subject = store();
        EXPECT_EQ(Foundation::runTask(subject.requestFullAccessToEvents()), row.granted) << row.name;
        EXPECT_EQ(subject.authorizationStatus(), row.status) << row.name;
        EXPECT_EQ(prompt->askedTimes(), 1) << row.name;
    }
    EXPECT_EQ(files->contents(home / "config/calendar-access.json", largestPreferenceFile), "3");
}

TEST_F(FolderEventStoreTests, anAnswerThatCannotBeKeptFailsTheRequest) {
    auto const failing = std::make_shared<InMemoryFileManager>();
    failing->failsAfter(0);
    files = failing;
    auto subject = store();
    EXPECT_THROW(Foundation::runTask(subject.requestFullAccessToEvents()), EKError);
    EXPECT_EQ(subject.authorizationStatus(), EKAuthorizationStatus::notDetermined);
}

TEST_F(FolderEventStoreTests, foldersThatMayNotBeOpenedCountAsDeniedWhateverTheRecordSays) {
    auto const closed = add("Closed");
    auto subject = store();
    ASSERT_TRUE(Foundation::runTask(subject.requestFullAccessToEvents()));
    OrdinaryUser const user(home.path());
    if (!user.isBoundByModes()) GTEST_SKIP() << "nothing is closed to this user";
    ASSERT_EQ(::chmod(closed.path.c_str(), 0), 0);
    EXPECT_EQ(subject.authorizationStatus(), EKAuthorizationStatus::denied);
    EXPECT_TRUE(subject.sources().at(0).calendars.empty());
    add("Open");
    EXPECT_EQ(subject.authorizationStatus(), EKAuthorizationStatus::fullAccess);
    ASSERT_EQ(::chmod(closed.path.c_str(), 0700), 0);
}

TEST_F(FolderEventStoreTests, aFileThatMayNotBeReadIsNamedAndTheRestShown) {
    auto const closed = home.write("One/x/a.ics", smallFile({smallEvent("a", "Closed")}));
    home.write("One/x/b.ics", smallFile({smallEvent("b", "Open")}));
    add("One");
    OrdinaryUser const user(home.path());
    if (!user.isBoundByModes()) GTEST_SKIP() << "nothing is closed to this user";
    ASSERT_EQ(::chmod(closed.c_str(), 0), 0);
    auto subject = store();
    EXPECT_EQ(titles(subject), (Texts{"Open"}));
    EXPECT_EQ(log->messages(), (Texts{closed.string() + ": it could not be read: Permission denied"}));
    ASSERT_EQ(::chmod(closed.c_str(), 0600), 0);
    EXPECT_EQ(titles(subject), (Texts{"Closed", "Open"}));
}

TEST_F(FolderEventStoreTests, aVanishedFolderIsNoRefusal) {
    add("Gone");
    std::filesystem::remove(home / "Gone");
    auto subject = store();
    ASSERT_TRUE(Foundation::runTask(subject.requestFullAccessToEvents()));
    EXPECT_EQ(subject.authorizationStatus(), EKAuthorizationStatus::fullAccess);
}

TEST_F(FolderEventStoreTests, severalThreadsMayAskAtOnce) {
    home.write("One/x/a.ics", smallFile({smallEvent("a", "One")}));
    add("One");
    auto subject = store();
    std::vector<std::jthread> threads;
    std::atomic<int> answers = 0;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&] {
            for (int query = 0; query < 20; ++query) {
                if (titles(subject) == Texts{"One"} && subject.sources().size() == 1) ++answers;
            }
        });
    }
    threads.clear();
    EXPECT_EQ(answers, 80);
}

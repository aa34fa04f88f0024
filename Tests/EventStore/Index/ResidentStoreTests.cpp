#include "Platform/Clock/FixedClock.h"
#include "Platform/Clock/FixedRegionSettings.h"
#include "Platform/EventStore/Folder/FolderEventStore.h"
#include "Platform/EventStore/GivenConsentPrompt.h"
#include "Platform/Files/PosixFileManager.h"
#include "Platform/Logging/RecordingLogSink.h"
#include "Tests/EventStore/Folder/SmallCalendars.h"
#include "Tests/EventStore/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <mutex>

using namespace Platform;

namespace {

using Texts = std::vector<std::string>;

// Counts the calls of the store, which come on another thread.
class Calls {
public:
    void count() {
        std::scoped_lock const lock(mutex);
        ++calls;
        changed.notify_all();
    }
    [[nodiscard]] bool awaitMoreThan(int before) {
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, std::chrono::seconds(60), [&] { return calls > before; });
    }
    [[nodiscard]] int soFar() {
        std::scoped_lock const lock(mutex);
        return calls;
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    int calls = 0;
};

class ResidentStoreTests : public testing::Test {
protected:
    ResidentStoreTests() {
        EXPECT_TRUE(CalendarStoreConfiguration(home / "config", files).add(root(), std::nullopt).has_value());
        write("work/a.ics", "A");
        write("work/b.ics", "B");
        // What another process left.
        EXPECT_EQ(titles(*store(nullptr)), (Texts{"A", "B"}));
    }

    std::filesystem::path root() const {
        std::filesystem::create_directories(home / "Calendars");
        return home / "Calendars";
    }

    std::unique_ptr<FolderEventStore> store(std::function<void()> onDifference) const {
        return std::make_unique<FolderEventStore>(FolderEventStoreParts{
            .places = {.configurationDirectory = home / "config",
                       .nativeCalendar = home / "native",
                       .indexDirectory = home / "cache"},
            .files = files,
            .region = std::make_shared<FixedRegionSettings>(Foundation::Calendar(Foundation::TimeZone::utc()),
                                                            Foundation::Locale{.identifier = "en"}),
            .fileSystemClock = std::make_shared<FixedClock>(Foundation::Date{4e9}),
            .prompt = std::make_shared<GivenConsentPrompt>(ConsentAnswer::yes),
            .logger = Logger(log, "tests", "EventStore"),
            .onDifference = std::move(onDifference),
        });
    }

    std::unique_ptr<FolderEventStore> resident() {
        return store([this] { calls.count(); });
    }

    void write(std::string const& name, std::string const& title) const {
        home.write("Calendars/" + name, smallFile({smallEvent(name, title)}));
    }

    static Texts titles(FolderEventStore& store) {
        Texts texts;
        for (auto const& event :
             store.eventsMatching({.start = {1772319600}, .end = {1774994400}, .calendars = std::nullopt}))
            texts.push_back(event.title.value_or("untitled"));
        return texts;
    }

    // Until all that is to be verified is: then an answer is certain.
    Texts finalTitles(FolderEventStore& store) {
        auto answer = titles(store);
        store.awaitVerification();
        answer = titles(store);
        store.awaitVerification();
        return answer;
    }

    TemporaryFolder home;
    std::shared_ptr<FileManager const> files = std::make_shared<PosixFileManager>(Foundation::Environment());
    std::shared_ptr<RecordingLogSink> log = std::make_shared<RecordingLogSink>();
    Calls calls;
};

} // namespace

TEST_F(ResidentStoreTests, aFileThatHasBeenRemovedIsNoTrouble) {
    std::filesystem::remove(home / "Calendars/work/a.ics");
    auto const subject = resident();
    EXPECT_EQ(finalTitles(*subject), (Texts{"B"}));
    EXPECT_TRUE(log->records().empty()) << log->records().front().message;
}

TEST_F(ResidentStoreTests, answersFromWhatIsKnownAndTellsWhenThatWasNotAll) {
    write("work/c.ics", "C");
    std::filesystem::remove(home / "Calendars/work/a.ics");
    auto const subject = resident();
    // The file that is gone is missed at once, since its event is asked for; the new one is not known yet.
    EXPECT_EQ(titles(*subject), (Texts{"B"}));
    ASSERT_TRUE(calls.awaitMoreThan(0));
    EXPECT_EQ(titles(*subject), (Texts{"B", "C"}));
}

TEST_F(ResidentStoreTests, tellsNothingWhereNothingChanged) {
    auto const subject = resident();
    EXPECT_EQ(finalTitles(*subject), (Texts{"A", "B"}));
    EXPECT_EQ(finalTitles(*subject), (Texts{"A", "B"}));
    EXPECT_EQ(calls.soFar(), 0);
}

TEST_F(ResidentStoreTests, onceItHasLookedAChangeIsInTheNextAnswer) {
    auto const subject = resident();
    EXPECT_EQ(finalTitles(*subject), (Texts{"A", "B"}));
    write("work/a.ics", "A2");
    EXPECT_EQ(titles(*subject), (Texts{"A2", "B"}));
    write("work/c.ics", "C");
    EXPECT_EQ(titles(*subject), (Texts{"A2", "B", "C"}));
    write("aside", "Linked");
    std::filesystem::create_hard_link(home / "Calendars/aside", home / "Calendars/work/d.ics");
    EXPECT_EQ(titles(*subject), (Texts{"A2", "B", "C", "Linked"}));
    std::filesystem::remove(home / "Calendars/work/b.ics");
    EXPECT_EQ(titles(*subject), (Texts{"A2", "C", "Linked"}));
    write("other/e.ics", "Elsewhere");
    EXPECT_EQ(titles(*subject), (Texts{"Elsewhere", "A2", "C", "Linked"}));
    std::filesystem::rename(home / "Calendars/work", home / "Calendars/zoo");
    EXPECT_EQ(titles(*subject), (Texts{"Elsewhere", "A2", "C", "Linked"}));
    std::filesystem::remove_all(home / "Calendars/other");
    EXPECT_EQ(titles(*subject), (Texts{"A2", "C", "Linked"}));
    EXPECT_EQ(calls.soFar(), 0);
}

TEST_F(ResidentStoreTests, whatIsRemovedAndComesBackIsFollowed) {
    auto const subject = resident();
    EXPECT_EQ(finalTitles(*subject), (Texts{"A", "B"}));
    for (auto const* const back : {"Back", "Back again"}) {
        std::filesystem::remove_all(home / "Calendars");
        EXPECT_EQ(finalTitles(*subject), Texts{});
        write("work/a.ics", back);
        EXPECT_EQ(finalTitles(*subject), (Texts{back}));
        write("work/c.ics", "C");
        EXPECT_EQ(titles(*subject), (Texts{back, "C"})) << "it is not watched any more";
    }
}

TEST_F(ResidentStoreTests, looksAfterwardsAtFilesThatOnlyALinkLeadsTo) {
    home.write("Calendars/deeper/inside/target", smallFile({smallEvent("t", "Target")}));
    std::filesystem::create_symlink(home / "Calendars/deeper/inside/target", home / "Calendars/work/z.ics");
    auto const subject = resident();
    EXPECT_EQ(finalTitles(*subject), (Texts{"A", "B", "Target"}));
    auto const before = calls.soFar();
    // Written where nobody watches; its event moves out of what the index knows of it.
    home.write("Calendars/deeper/inside/target",
               smallFile({smallEvent("t", "Target"), smallEvent("u", "Another")}));
    titles(*subject);
    ASSERT_TRUE(calls.awaitMoreThan(before));
    EXPECT_EQ(titles(*subject), (Texts{"A", "B", "Target", "Another"}));
}

TEST_F(ResidentStoreTests, endsInTheMidstOfALook) {
    for (int round = 0; round < 20; ++round) {
        auto const subject = resident();
        EXPECT_EQ(titles(*subject), (Texts{"A", "B"}));
    }
}

TEST_F(ResidentStoreTests, mayBeAskedFromItsOwnCall) {
    write("work/c.ics", "C");
    Texts answer;
    std::unique_ptr<FolderEventStore> subject;
    subject = store([&] {
        answer = titles(*subject);
        calls.count();
    });
    titles(*subject);
    ASSERT_TRUE(calls.awaitMoreThan(0));
    EXPECT_EQ(answer, (Texts{"A", "B", "C"}));
}

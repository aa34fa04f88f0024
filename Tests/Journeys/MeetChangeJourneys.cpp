#include "PrivateHome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <iterator>
#include <regex>

namespace {

namespace fs = std::filesystem;
namespace JSON = Foundation::JSON;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

using Words = std::vector<std::string>;

constexpr char const* goAhead = "Go ahead? [y/n] ";
constexpr char const* nobody =
    "quillora: nothing was changed, because nobody could be asked; add --yes to go "
    "ahead without a question\n";
constexpr char const* gone =
    "The event is no longer in the calendar. Nothing was changed; load the day again.\n";

constexpr char const* nativeCalendar = "quillora-native-calendar";

std::ptrdiff_t filesIn(fs::path const& folder) {
    return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
}

// 2026-03-11, a Wednesday, with one meet and one occurrence of a daily series.
class MeetChangeJourneys : public testing::Test {
protected:
    void SetUp() override {
        home.write(home.calendars() / "work" / "review.ics",
                   calendarFile(event("u1", "Review", ";TZID=Europe/Berlin:20260311T140000",
                                      ";TZID=Europe/Berlin:20260311T153000", "X-OTHER;A=b:kept\r\n")));
        home.write(home.calendars() / "work" / "standup.ics",
                   calendarFile(event("u2", "Stand-up", ";TZID=Europe/Berlin:20260302T090000",
                                      ";TZID=Europe/Berlin:20260302T091500", "RRULE:FREQ=DAILY\r\n")));
        home.setUp();
    }

    static Words on(Words words, std::string const& day) {
        words.insert(words.end(), {"--day", day});
        return words;
    }
    static Words onTheDay(Words words) { return on(std::move(words), "2026-03-11"); }

    [[nodiscard]] JSON::Array meetsOf(std::string const& day) const {
        auto const list = JSON::parse(home.outputOf(on({"meet", "show", "--json"}, day)));
        return std::get<JSON::Array>(list.value().member("meetings")->storage);
    }
    [[nodiscard]] Words namesOf(std::string const& day) const {
        Words names;
        for (auto const& meet : meetsOf(day))
            names.push_back(JSON::text(*meet.member("metName")).value());
        return names;
    }
    [[nodiscard]] JSON::Value meet(std::string const& name, std::string const& day = "2026-03-11") const {
        for (auto const& each : meetsOf(day))
            if (*each.member("metName") == JSON::Value(name)) return each;
        ADD_FAILURE() << "no meet is called " << name << " on " << day;
        return JSON::Object{{"metId", "none"}};
    }
    [[nodiscard]] std::string idOf(std::string const& name, std::string const& day = "2026-03-11") const {
        return JSON::text(*meet(name, day).member("metId")).value();
    }
    [[nodiscard]] static std::string text(JSON::Value const& meet, std::string const& field) {
        auto const* value = meet.member(field);
        return value == nullptr ? "(absent)" : JSON::text(*value).value_or("(no text)");
    }
    [[nodiscard]] std::string shown(std::string const& id, std::string const& day = "2026-03-11") const {
        return home.outputOf(on({"meet", "show", id}, day));
    }
    [[nodiscard]] JSON::Value added(Words more) const {
        more.insert(more.begin(), {"meet", "add", "--json"});
        auto const document = JSON::parse(home.outputOf(onTheDay(std::move(more))));
        return *document.value().member("meet");
    }

    PrivateHome home;
};

TEST_F(MeetChangeJourneys, anAddedMeetIsThereAndNamedByTheIdThatWasPrinted) {
    auto const said = home.outputOf(onTheDay({"meet", "add", "--name", "Tea", "--start", "15:30"}));
    auto const id = idOf("Tea");
    EXPECT_EQ(said, "Added \"Tea\", Wednesday 2026-03-11, 03:30 p.m. – 04:30 p.m., to \"Quillora\" as " + id +
                        "\n");
    EXPECT_THAT(shown(id), StartsWith("Tea\n03:30 p.m. – 04:30 p.m.\n\n"));
    EXPECT_THAT(namesOf("2026-03-11"), ElementsAre("Stand-up", "Review", "Tea"));
}

TEST_F(MeetChangeJourneys, aProgramGetsTheNewMeetWithItsId) {
    auto const tea = added({"--name", "Tea", "--start", "9:05", "--duration", "1h30m", "--description",
                            "green\nor black", "--repeat", "weekly", "--weekdays", "Wed,fri"});
    EXPECT_EQ(tea, meet("Tea"));
    EXPECT_EQ(text(tea, "metDate"), "2026-03-11T08:05:00Z");
    EXPECT_EQ(*tea.member("metDuration"), JSON::Value(5400));
    EXPECT_EQ(text(tea, "metDescription"), "green\nor black");
    EXPECT_EQ(*tea.member("metRecurringWeekdays"), JSON::Value(JSON::Array{4, 6}));
    EXPECT_THAT(namesOf("2026-03-13"), ElementsAre("Stand-up", "Tea"));
}

TEST_F(MeetChangeJourneys, theWidgetsOutermostDaysAreWholeForMeets) {
    // The widget reads ten days either way from this moment, so that one end of each lies outside.
    for (auto const* const offset : {"10", "-10"}) {
        auto const said = home.outputOf({"meet", "show", "--offset", offset});
        std::smatch day;
        ASSERT_TRUE(std::regex_search(said, day, std::regex("[0-9]{4}-[0-9]{2}-[0-9]{2}"))) << said;
        for (auto const* const start : {"0:00", "23:58"}) {
            auto const name = std::string("At ") + start;
            (void)home.outputOf(
                on({"meet", "add", "--name", name, "--start", start, "--duration", "1m"}, day.str()));
            auto const id = idOf(name, day.str());
            EXPECT_THAT(shown(id, day.str()), StartsWith(name + "\n"));
            (void)home.outputOf(on({"meet", "edit", id, "--name", "Other", "--yes"}, day.str()));
            (void)home.outputOf(on({"meet", "delete", idOf("Other", day.str()), "--yes"}, day.str()));
            EXPECT_THAT(namesOf(day.str()), Not(Contains("Other")));
        }
    }
}

TEST_F(MeetChangeJourneys, aMeetGoesIntoTheCalendarThatIsNamed) {
    auto const calendar = text(meet("Review"), "metCalendarIdentifier");
    EXPECT_EQ(
        text(added({"--name", "Tea", "--start", "10:00", "--calendar", calendar}), "metCalendarIdentifier"),
        calendar);
    EXPECT_EQ(filesIn(home.calendars() / "work"), 3);
}

TEST_F(MeetChangeJourneys, wholeDaysPlacesLinksAndEndsOfRepetitionAreKept) {
    auto const fair = added({"--name", "Fair", "--all-day", "--end", "2026-03-13", "--location", "Hall 2",
                             "--url", "https://example.org/fair"});
    EXPECT_EQ(fair, meet("Fair"));
    EXPECT_EQ(*fair.member("metIsAllDay"), JSON::Value(true));
    EXPECT_EQ(*fair.member("metDuration"), JSON::Value(3 * 86400));
    EXPECT_EQ(text(fair, "metLocation"), "Hall 2");
    EXPECT_EQ(text(fair, "metUrl"), "https://example.org/fair");
    auto const run =
        added({"--name", "Run", "--start", "07:00", "--repeat", "daily", "--until", "2026-03-13"});
    EXPECT_THAT(shown(text(run, "metId")), HasSubstr("Repeats   every day, until Friday 2026-03-13\n"));
    EXPECT_THAT(namesOf("2026-03-13"), ElementsAre("Run", "Stand-up"));
    EXPECT_THAT(namesOf("2026-03-14"), ElementsAre("Stand-up"));
    auto const party = added({"--name", "Party", "--start", "20:00", "--repeat", "yearly", "--count", "3"});
    EXPECT_THAT(shown(text(party, "metId")), HasSubstr("Repeats   every year, 3 times in all\n"));
    EXPECT_THAT(namesOf("2028-03-11"), ElementsAre("Stand-up", "Party"));
    EXPECT_THAT(namesOf("2029-03-11"), ElementsAre("Stand-up"));
}

TEST_F(MeetChangeJourneys, whatIsRefusedFailsWithItsOneReasonLast) {
    struct Row {
        char const* name;
        Words words;
        char const* reason;
    };
    auto const before = home.snapshot();
    for (auto const& row : std::vector<Row>{
             {"blank",
              {"--name", " ", "--start", "09:00"},
              "The meet has no title. Nothing was stored; give it a title."},
             {"backwards",
              {"--name", "Tea", "--start", "09:00", "--end", "08:00"},
              "The meet does not end after it starts. Nothing was stored; give it a later end."},
             {"no time",
              {"--name", "Tea", "--start", "09:00", "--duration", "0"},
              "The meet does not end after it starts. Nothing was stored; give it a later end."},
             {"days backwards",
              {"--name", "Tea", "--all-day", "--end", "2026-03-10"},
              "The meet does not end after it starts. Nothing was stored; give it a later end."},
             {"weekday",
              {"--name", "Tea", "--start", "09:00", "--repeat", "weekly", "--weekdays", "mon,9"},
              "The event repeats on a weekday outside 1…7; it was not saved."},
         }) {
        auto words = row.words;
        words.insert(words.begin(), {"meet", "add"});
        auto const result = home.quillora(onTheDay(words));
        EXPECT_EQ(result.exitCode, 1) << row.name;
        EXPECT_EQ(result.output, "") << row.name;
        EXPECT_EQ(result.errors, std::string("quillora: the meet was not added\n") + row.reason + "\n")
            << row.name;
    }
    EXPECT_EQ(home.snapshot(), before);
}

TEST_F(MeetChangeJourneys, withoutACalendarForNewMeetsItSaysSo) {
    fs::remove_all(home.folder() / "data/Quillora/Calendars");
    for (auto const& more : std::vector<Words>{{}, {"--location", "Hall"}}) {
        Words words = {"meet", "add", "--name", "Tea", "--start", "09:00"};
        words.insert(words.end(), more.begin(), more.end());
        auto const result = home.quillora(words);
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(result.errors, "quillora: the meet was not added\n"
                                 "There is no calendar for new meets, so nothing was saved. Add a calendar "
                                 "that can be written to.\n");
    }
}

TEST_F(MeetChangeJourneys, aFolderThatCannotBeWrittenLeavesEverythingAsItWas) {
    if (!canGiveUpOverride()) GTEST_SKIP() << "here root cannot give up its power to write everything";
    auto const id = idOf("Review");
    auto const work = home.calendars() / "work";
    auto const before = home.contentOf(work / "review.ics");
    fs::permissions(work, fs::perms::owner_read | fs::perms::owner_exec);
    for (auto const& words : std::vector<Words>{{"meet", "edit", id, "--name", "Other", "--yes"},
                                                {"meet", "delete", id, "--yes"}}) {
        auto const result = home.quilloraWithoutOverride(onTheDay(words));
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_THAT(result.errors, StartsWith("quillora: the meet \"Review\" was not "));
        EXPECT_EQ(std::ranges::count(result.errors, '\n'), 2) << result.errors;
    }
    EXPECT_EQ(home.contentOf(work / "review.ics"), before);
    EXPECT_EQ(filesIn(work), 2);
    fs::permissions(work, fs::perms::owner_all);
}

TEST_F(MeetChangeJourneys, anEditSaysWhatItWillChangeAndAsks) {
    auto const words = onTheDay({"meet", "edit", idOf("Review"), "--start", "16:00", "--name", "Retro"});
    auto const plan = "Changes \"Review\", Wednesday 2026-03-11, 02:00 p.m. – 03:30 p.m.:\r\n"
                      "  Title  Review                                         →  Retro\r\n"
                      "  When   Wednesday 2026-03-11, 02:00 p.m. – 03:30 p.m.  →  "
                      "Wednesday 2026-03-11, 04:00 p.m. – 05:30 p.m.\r\n";
    auto const before = home.snapshot();
    auto const refused = home.quilloraAsked(words, goAhead, "n\n");
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_EQ(home.snapshot(), before);
    EXPECT_THAT(refused.output, HasSubstr("nothing was changed"));
    auto const ended = home.quilloraAsked(words, goAhead, "\x04");
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(ended.output, HasSubstr(std::string(goAhead) +
                                        "\r\nquillora: nothing was changed, because the question was not "
                                        "answered\r\n"));
    auto const interrupted = home.quilloraAsked(words, goAhead, "\x03");
    EXPECT_EQ(interrupted.exitCode, 130);
    EXPECT_THAT(interrupted.output, HasSubstr("quillora: interrupted at the question; "));
    EXPECT_EQ(home.snapshot(), before);

    auto const done = home.quilloraAsked(words, goAhead, "y\n");
    EXPECT_EQ(done.exitCode, 0) << done.output;
    EXPECT_THAT(done.output, StartsWith(plan));
    auto const retro = meet("Retro");
    EXPECT_THAT(done.output, EndsWith("now " + text(retro, "metId") + "\r\n"));
    EXPECT_EQ(text(retro, "metDate"), "2026-03-11T15:00:00Z");
    EXPECT_EQ(*retro.member("metDuration"), JSON::Value(5400));
    EXPECT_THAT(home.contentOf(home.calendars() / "work" / "review.ics"), HasSubstr("X-OTHER;A=b:kept\r\n"));
}

TEST_F(MeetChangeJourneys, withNobodyToAskNothingIsChanged) {
    auto const before = home.snapshot();
    auto const id = idOf("Stand-up");
    for (auto const& words :
         std::vector<Words>{{"meet", "edit", id, "--name", "Other"}, {"meet", "delete", id}}) {
        auto const result = home.quillora(onTheDay(words));
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_EQ(result.output, "");
        EXPECT_THAT(result.errors, HasSubstr("\"Stand-up\""));
        EXPECT_THAT(result.errors, EndsWith(nobody));
    }
    EXPECT_EQ(home.snapshot(), before);
}

TEST_F(MeetChangeJourneys, anEditOfAnOccurrenceChangesThisOneAlone) {
    auto const id = idOf("Stand-up");
    auto const words = onTheDay({"meet", "edit", id, "--name", "Long stand-up", "--duration", "30"});
    EXPECT_THAT(home.quillora(words).errors,
                StartsWith("Changes only this occurrence of \"Stand-up\", Wednesday 2026-03-11, 09:00 a.m. – "
                           "09:15 a.m.; its series stays as it is:\n"));
    auto withYes = words;
    withYes.emplace_back("--yes");
    EXPECT_THAT(home.outputOf(withYes), StartsWith("Changed \"Long stand-up\", Wednesday 2026-03-11"));
    EXPECT_EQ(*meet("Long stand-up").member("metDuration"), JSON::Value(1800));
    EXPECT_THAT(namesOf("2026-03-10"), ElementsAre("Stand-up"));
    EXPECT_THAT(namesOf("2026-03-12"), ElementsAre("Stand-up"));
}

TEST_F(MeetChangeJourneys, anEditOfThisAndTheFutureLeavesTheEarlierOnes) {
    auto const id = idOf("Stand-up");
    auto const words = onTheDay(
        {"meet", "edit", id, "--future", "--name", "Sync", "--start", "10:00", "--location", "Room 7"});
    EXPECT_THAT(home.quillora(words).errors,
                StartsWith("Changes \"Stand-up\" from this occurrence on, Wednesday 2026-03-11, 09:00 a.m. – "
                           "09:15 a.m.; earlier ones stay as they are:\n"));
    auto withYes = words;
    withYes.emplace_back("--yes");
    static_cast<void>(home.outputOf(withYes));
    EXPECT_THAT(namesOf("2026-03-10"), ElementsAre("Stand-up"));
    EXPECT_THAT(namesOf("2026-03-12"), ElementsAre("Sync"));
    EXPECT_EQ(text(meet("Sync", "2026-03-20"), "metDate"), "2026-03-20T09:00:00Z");
    EXPECT_EQ(text(meet("Sync", "2026-03-20"), "metLocation"), "Room 7");
    EXPECT_THAT(shown(idOf("Sync", "2026-03-20"), "2026-03-20"), HasSubstr("Repeats   every day\n"));
}

TEST_F(MeetChangeJourneys, howASeriesRepeatsIsChangedFromAnOccurrenceOn) {
    auto const id = idOf("Stand-up");
    for (auto const& reach : std::vector<Words>{{}, {"--this"}}) {
        auto words = onTheDay({"meet", "edit", id, "--repeat", "weekly", "--yes"});
        words.insert(words.end(), reach.begin(), reach.end());
        auto const result = home.quillora(words);
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_THAT(result.errors, HasSubstr("--future"));
    }
    static_cast<void>(home.outputOf(
        onTheDay({"meet", "edit", id, "--repeat", "weekly", "--weekdays", "wed", "--future", "--yes"})));
    EXPECT_THAT(namesOf("2026-03-10"), ElementsAre("Stand-up"));
    EXPECT_THAT(namesOf("2026-03-12"), IsEmpty());
    EXPECT_THAT(namesOf("2026-03-18"), ElementsAre("Stand-up"));
}

TEST_F(MeetChangeJourneys, aSingleMeetBecomesASeriesAndAFieldIsEmptied) {
    static_cast<void>(home.outputOf(
        onTheDay({"meet", "edit", idOf("Review"), "--repeat", "weekly", "--location", "Room 1", "--yes"})));
    EXPECT_THAT(namesOf("2026-03-18"), ElementsAre("Stand-up", "Review"));
    EXPECT_EQ(text(meet("Review"), "metLocation"), "Room 1");
    static_cast<void>(
        home.outputOf(onTheDay({"meet", "edit", idOf("Review"), "--location", "", "--future", "--yes"})));
    EXPECT_EQ(text(meet("Review"), "metLocation"), "(absent)");
    EXPECT_EQ(text(meet("Review", "2026-03-18"), "metLocation"), "(absent)");
}

TEST_F(MeetChangeJourneys, aMeetIsMovedFarOnlyAsThisOccurrence) {
    auto const before = home.snapshot();
    auto const id = idOf("Stand-up");
    // To 07:00: around it an edit would meet the occurrence of the day before first.
    for (auto const* start : {"07:00", "2026-04-01T09:00"}) {
        auto const result = home.quillora(onTheDay({"meet", "edit", id, "--start", start, "--yes"}));
        EXPECT_EQ(result.exitCode, 2) << start;
        EXPECT_THAT(result.errors, HasSubstr("--this")) << start;
    }
    EXPECT_EQ(home.snapshot(), before);
    static_cast<void>(home.outputOf(onTheDay({"meet", "edit", id, "--start", "07:00", "--this", "--yes"})));
    EXPECT_EQ(text(meet("Stand-up"), "metDate"), "2026-03-11T06:00:00Z");
    EXPECT_EQ(text(meet("Stand-up", "2026-03-10"), "metDate"), "2026-03-10T08:00:00Z");
    static_cast<void>(home.outputOf(
        onTheDay({"meet", "edit", idOf("Review"), "--start", "2026-04-01T10:00", "--this", "--yes"})));
    EXPECT_THAT(namesOf("2026-03-11"), ElementsAre("Stand-up"));
    EXPECT_THAT(namesOf("2026-04-01"), ElementsAre("Stand-up", "Review"));
}

TEST_F(MeetChangeJourneys, aMeetGoesToAnotherCalendarAsItIs) {
    auto const work = home.calendars() / "work";
    auto const before = home.contentOf(work / "review.ics");
    auto const calendar = text(meet("Review"), "metCalendarIdentifier");
    auto const run = home.quillora(onTheDay({"meet", "edit", idOf("Review"), "--calendar", nativeCalendar}));
    EXPECT_THAT(run.errors,
                HasSubstr("  Calendar  work (" + calendar + ")  →  Quillora (" + nativeCalendar + ")\n"));
    EXPECT_EQ(filesIn(work), 2) << "nobody has agreed";
    auto const said =
        home.outputOf(onTheDay({"meet", "edit", idOf("Review"), "--calendar", nativeCalendar, "--yes"}));
    EXPECT_EQ(filesIn(work), 1);
    EXPECT_EQ(text(meet("Review"), "metCalendarIdentifier"), nativeCalendar);
    EXPECT_THAT(said, HasSubstr(idOf("Review")));
    EXPECT_EQ(home.contentOf(home.folder() / "data/Quillora/Calendars/quillora-native-calendar/review.ics"),
              before);
    EXPECT_EQ(home.quillora(onTheDay({"meet", "edit", idOf("Review"), "--calendar", nativeCalendar})).errors,
              "quillora: \"Review\" is in that calendar already; nothing was changed\n");
    auto const back = home.outputOf(onTheDay({"meet", "edit", idOf("Review"), "--calendar", calendar,
                                              "--name", "Retrospect", "--start", "15:00", "--yes"}));
    EXPECT_THAT(back, HasSubstr(idOf("Retrospect")));
    EXPECT_EQ(text(meet("Retrospect"), "metDate"), "2026-03-11T14:00:00Z");
}

TEST_F(MeetChangeJourneys, aRepeatingMeetGoesToAnotherCalendarAsAWhole) {
    for (Words more : {Words{"--name", "Other"}, Words{"--this"}, Words{"--future"}}) {
        more.insert(more.begin(), {"meet", "edit", idOf("Stand-up"), "--yes", "--calendar", nativeCalendar});
        auto const run = home.quillora(onTheDay(more));
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_EQ(run.errors, "quillora: a repeating meet goes to another calendar with all its "
                              "occurrences, and --calendar stands alone then; nothing was changed\n");
    }
    auto const asked =
        home.quillora(onTheDay({"meet", "edit", idOf("Stand-up"), "--calendar", nativeCalendar}));
    EXPECT_THAT(asked.errors,
                StartsWith("Moves \"Stand-up\" with all its occurrences to another calendar:\n"));
    auto const said =
        home.outputOf(onTheDay({"meet", "edit", idOf("Stand-up"), "--calendar", nativeCalendar, "--yes"}));
    EXPECT_THAT(said, HasSubstr(idOf("Stand-up")));
    for (auto const* const day : {"2026-03-02", "2026-03-11", "2026-04-15"})
        EXPECT_EQ(text(meet("Stand-up", day), "metCalendarIdentifier"), nativeCalendar) << day;
    EXPECT_EQ(home.quillora(onTheDay({"meet", "edit", idOf("Stand-up"), "--calendar", "none"})).errors,
              "quillora: no calendar has the identifier \"none\"; \"quillora calendars list\" shows them\n");
}

TEST_F(MeetChangeJourneys, deletingAMeetSaysWhichAndAsks) {
    auto const words = onTheDay({"meet", "delete", idOf("Review")});
    auto const done = home.quilloraAsked(words, goAhead, "y\n");
    EXPECT_EQ(done.exitCode, 0) << done.output;
    EXPECT_THAT(done.output, StartsWith("Deletes \"Review\", Wednesday 2026-03-11, 02:00 p.m. – 03:30 p.m., "
                                        "from the calendar \"work\".\r\n"));
    EXPECT_THAT(done.output, EndsWith("Deleted \"Review\"\r\n"));
    EXPECT_THAT(namesOf("2026-03-11"), ElementsAre("Stand-up"));
}

TEST_F(MeetChangeJourneys, deletingARepeatingMeetTakesItsWholeSeriesAndSaysSo) {
    auto const words = onTheDay({"meet", "delete", idOf("Stand-up")});
    EXPECT_THAT(
        home.quillora(words).errors,
        StartsWith("Deletes the whole series \"Stand-up\" from the calendar \"work\": this occurrence, "
                   "Wednesday 2026-03-11, 09:00 a.m. – 09:15 a.m., and all earlier and later ones.\n"));
    auto withYes = words;
    withYes.emplace_back("--yes");
    EXPECT_EQ(home.outputOf(withYes), "Deleted \"Stand-up\"\n");
    for (auto const* day : {"2026-03-02", "2026-03-12"})
        EXPECT_THAT(namesOf(day), IsEmpty()) << day;
}

TEST_F(MeetChangeJourneys, thisOccurrenceOrTheFutureAloneCanBeDeleted) {
    EXPECT_THAT(home.quillora(onTheDay({"meet", "delete", idOf("Stand-up"), "--this"})).errors,
                StartsWith("Deletes only this occurrence of \"Stand-up\", "));
    static_cast<void>(home.outputOf(onTheDay({"meet", "delete", idOf("Stand-up"), "--this", "--yes"})));
    EXPECT_THAT(namesOf("2026-03-11"), ElementsAre("Review"));
    EXPECT_THAT(namesOf("2026-03-12"), ElementsAre("Stand-up"));

    auto const later = on({"meet", "delete", idOf("Stand-up", "2026-03-13"), "--future"}, "2026-03-13");
    EXPECT_THAT(home.quillora(later).errors,
                StartsWith("Deletes \"Stand-up\" from this occurrence on, Friday 2026-03-13, "));
    auto withYes = later;
    withYes.emplace_back("--yes");
    static_cast<void>(home.outputOf(withYes));
    EXPECT_THAT(namesOf("2026-03-12"), ElementsAre("Stand-up"));
    EXPECT_THAT(namesOf("2026-03-13"), IsEmpty());
}

TEST_F(MeetChangeJourneys, aChangedOccurrenceIsDeletedByItself) {
    static_cast<void>(
        home.outputOf(onTheDay({"meet", "edit", idOf("Stand-up"), "--name", "Special", "--yes"})));
    auto const words = onTheDay({"meet", "delete", idOf("Special")});
    EXPECT_THAT(home.quillora(words).errors, StartsWith("Deletes only this occurrence of \"Special\", "));
    auto withYes = words;
    withYes.emplace_back("--yes");
    static_cast<void>(home.outputOf(withYes));
    EXPECT_THAT(namesOf("2026-03-11"), ElementsAre("Review"));
    EXPECT_THAT(namesOf("2026-03-12"), ElementsAre("Stand-up"));
}

TEST_F(MeetChangeJourneys, theFutureOfAChangedOccurrenceStaysASeries) {
    static_cast<void>(
        home.outputOf(onTheDay({"meet", "edit", idOf("Stand-up"), "--name", "Special", "--yes"})));
    static_cast<void>(
        home.outputOf(onTheDay({"meet", "edit", idOf("Special"), "--name", "New", "--future", "--yes"})));
    EXPECT_THAT(namesOf("2026-03-10"), ElementsAre("Stand-up"));
    EXPECT_THAT(namesOf("2026-03-11"), ElementsAre("New", "Review"));
    EXPECT_THAT(namesOf("2026-03-12"), ElementsAre("New"));
    EXPECT_THAT(namesOf("2026-03-20"), ElementsAre("New"));
}

TEST_F(MeetChangeJourneys, whatIsGoneIsToldWithTheRepositorysOwnText) {
    auto const id = idOf("Review");
    fs::remove(home.calendars() / "work" / "review.ics");
    for (auto const& words : std::vector<Words>{{"meet", "edit", id, "--name", "Other", "--yes"},
                                                {"meet", "delete", id, "--yes"},
                                                {"meet", "show", id}}) {
        auto const result = home.quillora(onTheDay(words));
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_THAT(result.errors,
                    StartsWith("quillora: no meet on Wednesday 2026-03-11 has an id that begins "
                               "with \"" +
                               id + "\""));
        EXPECT_THAT(result.errors, EndsWith(gone));
    }
}

TEST_F(MeetChangeJourneys, withoutAccessNothingIsAddedAndItSaysWhatHelps) {
    ASSERT_EQ(home.quillora({"access", "deny"}).exitCode, 0);
    auto const before = home.snapshot();
    auto const result = home.quillora({"meet", "add", "--name", "Tea", "--start", "09:00"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.errors, HasSubstr("Quillora may not read your calendars"));
    EXPECT_EQ(home.snapshot(), before);
}

TEST_F(MeetChangeJourneys, whatIsTypedCannotHarmATerminal) {
    auto const id = text(added({"--name", "Evil\x1B[31m\xE2\x80\xAE", "--start", "10:00"}), "metId");
    auto const words = onTheDay({"meet", "edit", id, "--description", "a\x07\n\xFF", "--name", "New\x1B[0m"});
    auto const plan = home.quillora(words).errors;
    for (auto const* harmful : {"\x1B", "\x07", "\xE2\x80\xAE", "\xFF"})
        EXPECT_THAT(plan, Not(HasSubstr(harmful)));
    EXPECT_THAT(plan, HasSubstr("New\xEF\xBF\xBD[0m\n"));
}

TEST_F(MeetChangeJourneys, itSpeaksThePersonsLanguage) {
    home.environment["LANG"] = "es_ES.UTF-8";
    EXPECT_THAT(shown(idOf("Stand-up")), HasSubstr("Se repite   cada día\n"));
    auto const result = home.quillora(onTheDay({"meet", "edit", idOf("Stand-up"), "--name", "Otra"}));
    EXPECT_THAT(result.errors, StartsWith("Cambia solo esta repetición de «Stand-up», Miércoles 2026-03-11"));
    EXPECT_THAT(result.errors, HasSubstr("--yes"));
}

} // namespace

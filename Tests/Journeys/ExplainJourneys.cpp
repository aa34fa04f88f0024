#include "PrivateHome.h"

#include "Foundation/TimeZone.h"
#include "Samples/SampleFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <sstream>

namespace {

namespace JSON = Foundation::JSON;
using testing::HasSubstr;

JSON::Array const& list(JSON::Value const& value, std::string_view name) {
    return std::get<JSON::Array>(value.member(name)->storage);
}

std::string member(JSON::Value const& value, std::string_view name) {
    auto const* const found = value.member(name);
    return found == nullptr ? "" : JSON::text(*found).value_or("?");
}

// The content lines of the component that begins on a line of a file, from 1, whole and without their ends.
std::vector<std::string> componentAt(std::string const& content, std::int64_t number) {
    std::istringstream text(content);
    std::string line;
    for (; number > 0; --number)
        std::getline(text, line);
    std::vector<std::string> lines = {line};
    while (!lines.back().starts_with("END:") && std::getline(text, line)) {
        if (line.starts_with(' '))
            lines.back() += line.substr(1);
        else
            lines.push_back(line);
        if (lines.back().ends_with('\r')) lines.back().pop_back();
    }
    if (lines.front().ends_with('\r')) lines.front().pop_back();
    return lines;
}

// The value of the property of that name without parameters, its escapes resolved.
std::string propertyOf(std::vector<std::string> const& component, std::string const& name) {
    for (auto const& line : component) {
        if (!line.starts_with(name + ":")) continue;
        std::string value;
        for (std::size_t index = name.size() + 1; index < line.size(); ++index) {
            if (line[index] == '\\') ++index;
            value += line.at(index);
        }
        return value;
    }
    return "";
}

class ExplainJourneys : public testing::Test {
protected:
    [[nodiscard]] JSON::Value explained(std::vector<std::string> words) const {
        words.insert(words.begin(), {"explain", "--at", "2026-03-11T11:00:00"});
        words.emplace_back("--json");
        return JSON::parse(home.outputOf(words)).value();
    }

    // The rule for the meet of that title.
    [[nodiscard]] std::string rule(std::string const& title,
                                   std::vector<std::string> const& words = {}) const {
        auto const page = explained(words);
        for (auto const& meet : list(page, "meets"))
            if (member(*meet.member("meet"), "metName") == title) return member(meet, "rule");
        return "not there";
    }

    void add(std::string const& calendar, std::string const& title, std::string const& start,
             std::string const& end, std::string const& more = "") const {
        home.write(home.calendars() / calendar / (title + ".ics"),
                   calendarFile(event(title, title, start, end, more)));
    }

    PrivateHome home;
};

TEST_F(ExplainJourneys, everyRuleIsToldByItsName) {
    add("work", "Review", ":20260311T130000Z", ":20260311T140000Z");
    add("work", "Fair", ";VALUE=DATE:20260311", ";VALUE=DATE:20260312");
    add("work", "Early", ":20260311T080000Z", ":20260311T090000Z");
    add("work", "Night", ":20260310T210000Z", ":20260311T030000Z");
    add("secret", "Surprise", ":20260311T150000Z", ":20260311T160000Z");
    add("work", "Gym", ":20260310T160000Z", ":20260310T170000Z",
        "RRULE:FREQ=DAILY;COUNT=5\r\nEXDATE:20260311T160000Z\r\n");
    add("work", "Off", ":20260311T170000Z", ":20260311T180000Z", "STATUS:CANCELLED\r\n");
    home.write(home.calendars() / "work" / "choir.ics",
               calendarFile(event("choir", "Choir", ":20260310T180000Z", ":20260310T190000Z",
                                  "RRULE:FREQ=DAILY;COUNT=5\r\n") +
                            event("choir", "Choir", ":20260312T200000Z", ":20260312T210000Z",
                                  "RECURRENCE-ID:20260311T180000Z\r\n")));
    home.setUp();
    auto const calendars = JSON::parse(home.outputOf({"calendars", "list", "--json"})).value();
    for (auto const& account : list(calendars, "accounts"))
        for (auto const& calendar : list(account, "eacCalendars"))
            if (member(calendar, "eciTitle") == "secret")
                (void)home.outputOf({"calendars", "hide", member(calendar, "eciId")});

    EXPECT_EQ(rule("Review"), "card");
    EXPECT_EQ(rule("Fair"), "allDayRow");
    EXPECT_EQ(rule("Fair", {"--family", "small"}), "noAllDaySection");
    EXPECT_EQ(rule("Early"), "ended");
    EXPECT_EQ(rule("Night"), "startsOnAnotherDay");
    EXPECT_EQ(rule("Surprise"), "hiddenCalendar");
    EXPECT_EQ(rule("Gym"), "excludedDate");
    EXPECT_EQ(rule("Off"), "cancelledEvent");
    EXPECT_EQ(rule("Choir"), "movedOccurrence");
    EXPECT_EQ(rule("Gym", {"--offset", "1"}), "card");
    EXPECT_EQ(rule("Gym", {"--offset", "-1"}), "card");
}

TEST_F(ExplainJourneys, theOutermostDaysEndAtThisMoment) {
    // Ten days ahead the widget's window ends at this time of day.
    add("work", "Breakfast", ":20260321T080000Z", ":20260321T090000Z");
    add("work", "Dinner", ":20260321T180000Z", ":20260321T190000Z");
    home.setUp();
    EXPECT_EQ(rule("Breakfast", {"--offset", "10"}), "card");
    EXPECT_EQ(rule("Dinner", {"--offset", "10"}), "outsideReach");
}

TEST_F(ExplainJourneys, aDayBeyondTheButtonsIsSaidToBe) {
    add("work", "Far", ":20260401T080000Z", ":20260401T090000Z");
    home.setUp();
    auto const page = explained({"--day", "2026-04-01"});
    EXPECT_EQ(member(page, "dayRule"), "beyondButtons");
    ASSERT_EQ(list(page, "meets").size(), 1U);
    EXPECT_EQ(*list(page, "meets").front().member("isShown"), JSON::Value(false));
}

TEST_F(ExplainJourneys, withoutTheAccountOrAccessNothingIsShown) {
    add("work", "Review", ":20260311T130000Z", ":20260311T140000Z");
    home.setUp();
    home.write(home.container() / "enabledCalendarAccounts.json", "[]");
    EXPECT_EQ(member(explained({}), "dayRule"), "accountNotEnabled");
    EXPECT_EQ(rule("Review"), "accountNotEnabled");
    home.write(home.container() / "enabledCalendarAccounts.json", R"(["eventKit"])");
    (void)home.outputOf({"access", "deny"});
    auto const page = explained({});
    EXPECT_EQ(member(page, "dayRule"), "accessDenied");
    EXPECT_TRUE(list(page, "meets").empty());
    EXPECT_THAT(home.outputOf({"explain"}), HasSubstr("Nothing of the day is shown"));
}

TEST_F(ExplainJourneys, aNameFindsAMeetByTitleOrIdAndElsewhere) {
    add("work", "Review of plans", ":20260311T130000Z", ":20260311T140000Z");
    add("work", "Party", ":20260314T130000Z", ":20260314T140000Z");
    home.setUp();
    auto const byTitle = explained({"REVIEW"});
    ASSERT_EQ(list(byTitle, "meets").size(), 1U);
    auto const id = member(*list(byTitle, "meets").front().member("meet"), "metId");
    EXPECT_EQ(explained({id.substr(0, 8)}), byTitle);
    auto const elsewhere = explained({"party"});
    EXPECT_TRUE(list(elsewhere, "meets").empty());
    ASSERT_EQ(list(elsewhere, "otherDays").size(), 1U);
    EXPECT_THAT(home.outputOf({"explain", "party", "--at", "2026-03-11T11:00:00"}),
                HasSubstr("Saturday 2026-03-14, 02:00 p.m. – 03:00 p.m.  Party\n"));
}

TEST_F(ExplainJourneys, whatIsNowhereIsSaidWithWhatCouldNotBeRead) {
    home.write(home.calendars() / "work" / "broken.ics",
               calendarFile("BEGIN:VEVENT\r\nUID:b\r\nSUMMARY:Broken\r\nDTSTART:nonsense\r\nEND:VEVENT\r\n"));
    home.setUp();
    auto const result = home.quillora({"explain", "Broken", "--at", "2026-03-11T11:00:00"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.errors, HasSubstr("broken.ics:"));
    EXPECT_THAT(result.errors, HasSubstr("no meet is called \"Broken\", neither on Wednesday 2026-03-11"));
}

TEST_F(ExplainJourneys, anEventThatAnotherOfItsUIDHidesIsNamed) {
    auto const folder = home.calendars() / "work";
    home.write(folder / "a.ics",
               calendarFile(event("same", "Hidden", ":20260311T090000Z", ":20260311T093000Z")));
    home.write(folder / "b.ics",
               calendarFile(event("same", "Shown", ":20260311T090000Z", ":20260311T093000Z")));
    home.setUp();
    auto const lost =
        (folder / "a.ics").string() + ":4: the event in " + (folder / "b.ics").string() +
        ":4 has the same UID and SEQUENCE and is shown instead; give one of them a UID of its own";
    EXPECT_THAT(home.outputOf({"explain", "--at", "2026-03-11T08:00:00"}), HasSubstr(lost));
    EXPECT_EQ(home.quillora({"day", "--at", "2026-03-11T08:00:00"}).errors, "");
}

TEST_F(ExplainJourneys, whatDoesNotHappenIsFoundOnOtherDaysWithItsRule) {
    add("work", "Off", ":20260312T130000Z", ":20260312T140000Z", "STATUS:CANCELLED\r\n");
    add("work", "Gym", ":20260314T130000Z", ":20260314T140000Z",
        "RRULE:FREQ=DAILY;COUNT=3\r\nEXDATE:20260315T130000Z\r\n");
    home.setUp();
    auto const off = explained({"off"});
    ASSERT_EQ(list(off, "otherDays").size(), 1U);
    EXPECT_EQ(member(list(off, "otherDays").front(), "rule"), "cancelledEvent");
    EXPECT_EQ(*list(off, "otherDays").front().member("isShown"), JSON::Value(false));
    EXPECT_THAT(home.outputOf({"explain", "off", "--at", "2026-03-11T11:00:00"}),
                HasSubstr("Off\n    Not shown: the event is cancelled ("));

    std::vector<std::string> rules;
    auto const gym = explained({"gym"});
    for (auto const& meet : list(gym, "otherDays"))
        rules.push_back(member(meet, "rule"));
    EXPECT_EQ(rules, (std::vector<std::string>{"startsOnAnotherDay", "excludedDate", "startsOnAnotherDay"}));
}

TEST_F(ExplainJourneys, theOutermostDaysAreLookedThroughWhole) {
    add("work", "Late", ":20260321T213000Z", ":20260321T220000Z");
    add("work", "Early", ":20260301T050000Z", ":20260301T060000Z");
    home.setUp();
    EXPECT_EQ(list(explained({"late"}), "otherDays").size(), 1U);
    EXPECT_EQ(list(explained({"early"}), "otherDays").size(), 1U);
}

TEST_F(ExplainJourneys, aSourceThatCannotBeOpenedIsNoEmptyDay) {
    if (!canGiveUpOverride()) GTEST_SKIP() << "nothing is closed to this user";
    add("work", "Review", ":20260311T130000Z", ":20260311T140000Z");
    home.setUp();
    std::filesystem::permissions(home.calendars(), std::filesystem::perms::none);
    auto const page = home.quilloraWithoutOverride({"explain", "--at", "2026-03-11T11:00:00"});
    auto const document = home.quilloraWithoutOverride({"explain", "--at", "2026-03-11T11:00:00", "--json"});
    std::filesystem::permissions(home.calendars(), std::filesystem::perms::owner_all);
    EXPECT_THAT(page.output, HasSubstr("What could be read of the calendars holds nothing for this day.\n"));
    EXPECT_THAT(page.output, HasSubstr("What could not be read whole:\n  " + home.calendars().string()));
    auto const parsed = JSON::parse(document.output).value();
    ASSERT_EQ(list(parsed, "problems").size(), 1U);
    EXPECT_EQ(member(list(parsed, "problems").front(), "file"), home.calendars().string());
}

TEST_F(ExplainJourneys, whatCannotBeReadIsSaidOnce) {
    home.write(home.calendars() / "work" / "broken.ics",
               calendarFile("BEGIN:VEVENT\r\nUID:b\r\nSUMMARY:Broken\r\nDTSTART:nonsense\r\nEND:VEVENT\r\n"));
    home.setUp();
    auto const timesIn = [](std::string const& text) {
        std::size_t count = 0;
        for (auto at = text.find("broken.ics:"); at != std::string::npos;
             at = text.find("broken.ics:", at + 1))
            ++count;
        return count;
    };
    for (int run = 1; run <= 2; ++run) { // The first one makes the index, from which the second one reads.
        auto const named = home.quillora({"explain", "nosuch", "--at", "2026-03-11T11:00:00"});
        EXPECT_EQ(timesIn(named.errors), 1U) << named.errors;
        auto const whole = home.quillora({"explain", "--at", "2026-03-11T11:00:00"});
        EXPECT_EQ(timesIn(whole.output), 1U) << whole.output;
        EXPECT_EQ(whole.errors, "");
    }
}

TEST_F(ExplainJourneys, aPageTellsPlaceAndRule) {
    add("work", "Review", ":20260311T130000Z", ":20260311T140000Z");
    home.setUp();
    auto const page = home.outputOf({"explain", "--at", "2026-03-11T11:00:00"});
    EXPECT_THAT(page, HasSubstr("Wednesday 2026-03-11, as a widget of the size \"large\" shows it\n"));
    EXPECT_THAT(page, HasSubstr("  02:00 p.m.  Review\n  Shown: card 1 from the top.\n"));
    EXPECT_THAT(page, HasSubstr((home.calendars() / "work" / "Review.ics").string() + ", line 4\n"));
}

// What a face has, and what the explanations of the same day say that it has.
struct Tally {
    std::vector<std::string> cards;
    std::vector<std::string> bars;
    std::int64_t more = 0;
    bool operator==(Tally const&) const = default;
};

Tally tallyOfFace(JSON::Value const& day) {
    Tally tally;
    for (auto const& row : list(*day.member("face"), "rows")) {
        if (member(row, "kind") == "card") tally.cards.push_back(member(row, "name"));
        if (member(row, "kind") == "bar") tally.bars.push_back(member(row, "name"));
        if (member(row, "kind") == "more") tally.more = JSON::integer(*row.member("count")).value();
    }
    return tally;
}

Tally tallyOfExplanations(JSON::Value const& page) {
    Tally tally;
    for (auto const& meet : list(page, "meets")) {
        auto const name = member(*meet.member("meet"), "metName");
        if (member(meet, "rule") == "card") tally.cards.push_back(name);
        if (member(meet, "rule") == "allDayRow") tally.bars.push_back(name);
        if (member(meet, "rule") == "didNotFit") ++tally.more;
    }
    return tally;
}

// A home with the sample calendars, dated around the moment of the tests.
class ExplainedSamplesJourneys : public ExplainJourneys {
protected:
    void SetUp() override {
        Samples::SampleRequest const request = {.day =
                                                    std::chrono::local_days(std::chrono::year(2026) / 3 / 11),
                                                .zone = Foundation::TimeZone::named("Europe/Berlin").value(),
                                                .archivedEvents = 200};
        ASSERT_EQ(Samples::writeSampleCalendars(request, home.calendars()), std::nullopt);
        home.setUp();
    }

    [[nodiscard]] JSON::Value day(std::vector<std::string> words) const {
        words.insert(words.end(), {"--at", "2026-03-11T11:00:00"});
        return home.dayJSON(words);
    }

    // The place that is named holds the event: its UID and, where it has a title, that.
    void expectPlace(JSON::Value const& explained) const {
        auto const& meet = *explained.member("meet");
        auto const component = componentAt(home.contentOf(member(explained, "file")),
                                           JSON::integer(*explained.member("line")).value());
        EXPECT_EQ(component.front(), "BEGIN:VEVENT") << member(explained, "file");
        EXPECT_THAT(member(meet, "metOriginalIdentifier"), HasSubstr(propertyOf(component, "UID")));
        EXPECT_EQ(propertyOf(component, "SUMMARY"), member(meet, "metName"));
    }
};

TEST_F(ExplainedSamplesJourneys, itSaysWhatTheFaceShows) {
    for (auto const* offset : {"-10", "-3", "-1", "0", "1", "4", "10"}) {
        for (auto const* family : {"small", "medium", "large"}) {
            std::vector<std::string> const words = {"--offset", offset, "--family", family};
            EXPECT_EQ(tallyOfExplanations(explained(words)), tallyOfFace(day(words)))
                << offset << " " << family;
        }
    }
}

TEST_F(ExplainedSamplesJourneys, onEachDayEachMeetOfTheDayAndNoOtherHasItsPlaceThere) {
    // What has a place on the day's list; the rest was left out of it.
    std::set<std::string> const listedRules = {"card", "allDayRow", "didNotFit", "noAllDaySection", "ended"};
    std::set<std::string> seenRules;
    for (int offset = -10; offset <= 10; ++offset) {
        std::vector<std::string> const words = {"--offset", std::to_string(offset)};
        std::multiset<std::string> listed;
        std::multiset<std::string> saidToBe;
        auto const face = day(words);
        auto const explanations = explained(words);
        for (auto const& meet : list(face, "meetings"))
            listed.insert(member(meet, "metId"));
        for (auto const& explanation : list(explanations, "meets")) {
            expectPlace(explanation);
            auto const rule = member(explanation, "rule");
            seenRules.insert(rule);
            if (listedRules.contains(rule)) saidToBe.insert(member(*explanation.member("meet"), "metId"));
            EXPECT_EQ(*explanation.member("isShown"), JSON::Value(rule == "card" || rule == "allDayRow"));
        }
        EXPECT_EQ(saidToBe, listed) << offset;
        EXPECT_FALSE(listed.empty()) << offset;
    }
    for (auto const* rule : {"card", "allDayRow", "didNotFit", "ended"})
        EXPECT_THAT(seenRules, testing::Contains(rule));
}

} // namespace

#include "PrivateHome.h"

#include "Tests/Networking/LoopbackServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string_view>

// What the companion makes of services that are wrong in ways of their own.
namespace {

using testing::HasSubstr;
using testing::Not;
using Words = std::vector<std::string>;

constexpr auto token = "s3cr3t-t0ken";

struct Event {
    std::string schedule = "2026-03-11T08:00:00Z";
    std::string repeat = "never";
    std::string customRepeat = "";
};

std::string eventJSON(Event const& event) {
    return R"({"evtId":"e1","evtTitle":"T","evtSchedule":")" + event.schedule +
           R"(","evtDurationMinutes":30,"evtDescription":"","evtRepeat":")" + event.repeat +
           R"(","evtCustomRepeat":")" + event.customRepeat + R"("})";
}

LoopbackServer::Answer always(std::string bytes) {
    return [bytes = std::move(bytes)](LoopbackServer::Connection const& connection, std::string const&) {
        connection.send(bytes);
    };
}

LoopbackServer::Answer holding(Event const& event) {
    return always(httpResponse("200 OK", "[" + eventJSON(event) + "]"));
}

// Repeats what it was sent.
void echo(LoopbackServer::Connection const& connection, std::string const& request) {
    connection.send(httpResponse("400 Bad Request", request));
}

// Holds an event, and answers what is to change it in this way.
LoopbackServer::Answer answeringChanges(LoopbackServer::Answer change) {
    return [change = std::move(change)](LoopbackServer::Connection const& connection,
                                        std::string const& request) {
        if (request.starts_with("GET ")) {
            holding({})(connection, request);
        } else {
            change(connection, request);
        }
    };
}

void reset(LoopbackServer::Connection const& connection, std::string const&) {
    connection.resetOnClose();
}

class BackendTroubleJourneys : public testing::Test {
protected:
    [[nodiscard]] ProgramResult ask(LoopbackServer const& server, Words words) const {
        words.insert(words.end(), {"--url", server.base(), "--token-fd", "0"});
        return home.quillora(std::move(words), ProgramRun::Output::captured, token);
    }

    // The same on a terminal, where nothing is asked: the login has been made before.
    [[nodiscard]] ProgramResult askOnTerminal(LoopbackServer const& server, Words words) {
        home.write(home.configuration() / "keychain.json", "\"file\"");
        auto const login = ask(server, {"backend", "login"});
        EXPECT_EQ(login.exitCode, 0) << login.errors;
        home.environment["TERM"] = "xterm";
        return home.quillora(std::move(words), ProgramRun::Output::terminal);
    }

    PrivateHome home;
};

TEST_F(BackendTroubleJourneys, aDateAtTheEndsOfTimeIsShownInUTCWhereTheClocksHaveNoSuchYear) {
    for (auto const& [zone, schedule] : std::vector<std::pair<std::string, std::string>>{
             {"Asia/Kathmandu", "9999-12-31T23:59:59Z"}, {"America/New_York", "0001-01-01T00:00:00Z"}}) {
        home.environment["TZ"] = zone;
        LoopbackServer const server(holding({.schedule = schedule}));
        auto const listed = ask(server, {"backend", "list"});
        EXPECT_EQ(listed.exitCode, 0) << listed.errors;
        EXPECT_EQ(listed.output, schedule + "  30 min  T    e1\n");
        EXPECT_THAT(ask(server, {"backend", "list", "--json"}).output, HasSubstr(schedule));
        // The list answers the change as well, so only that there is an answer matters here.
        EXPECT_EQ(ask(server, {"backend", "edit", "e1", "--start", "10:00"}).exitCode, 1);
    }
}

TEST_F(BackendTroubleJourneys, aDateThatItsOffsetCarriesOutOfTheYearsIsNoDate) {
    for (auto const* schedule : {"9999-12-31T23:59:59-23:59", "0001-01-01T00:00:00+23:59"}) {
        LoopbackServer const server(holding({.schedule = schedule}));
        auto const listed = ask(server, {"backend", "list"});
        EXPECT_EQ(listed.exitCode, 1);
        EXPECT_EQ(listed.errors, "quillora: the backend's meets were not listed\nThe data couldn’t be read "
                                 "because it isn’t in the correct format.\n");
    }
}

TEST_F(BackendTroubleJourneys, aTokenThatTheServiceRepeatsIsShownNowhere) {
    static_cast<void>(home.outputOf({"backend", "log", "on"}));
    LoopbackServer const server(echo);
    auto const listed = ask(server, {"backend", "list"});
    EXPECT_THAT(listed.errors, HasSubstr("Authorization: Bearer [token]"));
    EXPECT_THAT(listed.output, HasSubstr("Authorization: Bearer [token]"));
    auto const shown = home.quillora({"backend", "log", "show"});
    for (auto const& text : {listed.errors, listed.output, shown.errors, shown.output})
        EXPECT_THAT(text, Not(HasSubstr(token)));
    for (auto const& [path, content] : home.snapshot())
        EXPECT_THAT(content, Not(HasSubstr(token))) << path;
}

TEST_F(BackendTroubleJourneys, aRecordOfTheLogGivesATerminalNoOrders) {
    static_cast<void>(home.outputOf({"backend", "log", "on"}));
    std::string const orders = "\x1b[31mred\x1b]0;title\x07\n\u202eafter\n";
    LoopbackServer const server(always(httpResponse("400 Bad Request", orders)));
    auto const shown = askOnTerminal(server, {"backend", "list"}).output;
    EXPECT_THAT(shown, HasSubstr("response: 400 \uFFFD[31mred\uFFFD]0;title\uFFFD\r\n\uFFFDafter\r\n"));
    EXPECT_THAT(shown, Not(HasSubstr("\x1b[31m")));
    auto const file = home.contentOf(home.folder() / "data/Quillora/Logs/network.log");
    EXPECT_THAT(file, HasSubstr("response: 400 " + orders));
}

TEST_F(BackendTroubleJourneys, aChangeWithoutAReadableAnswerMayHaveBeenMade) {
    constexpr auto wrongFormat = "The data couldn’t be read because it isn’t in the correct format.\n";
    constexpr auto lost = "The network connection was lost.\n";
    constexpr auto maybe = ", unless the backend did it all the same; \"quillora backend list\" tells\n";
    LoopbackServer const unreadable(answeringChanges(always(httpResponse("200 OK", "done"))));
    LoopbackServer const gone(answeringChanges(reset));
    Words const addition = {"backend", "add", "--name", "N", "--start", "2026-03-11T09:00"};
    Words const edit = {"backend", "edit", "e1", "--name", "N"};
    Words const removal = {"backend", "delete", "e1", "--yes"};

    std::string const notAdded = "quillora: the meet \"N\" was not added";
    EXPECT_EQ(ask(unreadable, addition).errors, notAdded + maybe + wrongFormat);
    EXPECT_EQ(ask(gone, addition).errors, notAdded + maybe + lost);
    std::string const notChanged = "quillora: the meet \"e1\" was not changed";
    EXPECT_EQ(ask(unreadable, edit).errors, notChanged + maybe + wrongFormat);
    EXPECT_EQ(ask(gone, edit).errors, notChanged + maybe + lost);
    EXPECT_EQ(ask(gone, removal).errors,
              "quillora: the meet \"e1\" was not deleted" + std::string(maybe) + lost);

    LoopbackServer const refusing(answeringChanges(always(httpResponse("400 Bad Request", "no"))));
    EXPECT_EQ(ask(refusing, edit).errors, notChanged + "\nno\n");
    // What is refused before it is sent comes after a reading that went well.
    EXPECT_EQ(ask(refusing, {"backend", "edit", "e1", "--name", " "}).errors,
              notChanged + "\nThe meet has no title. Nothing was stored; give it a title.\n");
}

// A list of the events that take most memory for their length, of so many bytes or a little less.
std::string largeList(std::size_t bytes) {
    std::string list = "[";
    for (int number = 0;; ++number) {
        auto const event =
            R"({"evtId":")" + std::to_string(number) +
            R"(","evtTitle":"","evtSchedule":"2026-03-11T08:00:00Z","evtDurationMinutes":1,"evtDescription":"",)"
            R"("evtRepeat":"every_week","evtCustomRepeat":"mon|tue|wed|thu|fri|sat|sun"})";
        if (list.size() + event.size() + 2 > bytes) break;
        if (number > 0) list += ',';
        list += event;
    }
    return list + "]";
}

// A sanitizer needs several times as much for itself.
constexpr bool isWatched = !std::string_view(QUILLORA_SANITIZE).empty();
constexpr std::int64_t mostMemory = 64 * 1024; // KiB
constexpr std::size_t largestAnswer = std::size_t{4} << 20;

TEST_F(BackendTroubleJourneys, theLargestAnswerThatIsTakenFitsIntoTheMemoryOfAWellBehavedOne) {
    LoopbackServer const server(always(httpResponse("200 OK", largeList(largestAnswer))));
    for (auto const& words : {Words{"backend", "list"}, Words{"backend", "list", "--json"}}) {
        auto const listed = ask(server, words);
        EXPECT_EQ(listed.exitCode, 0) << listed.errors;
        EXPECT_GT(std::ranges::count(listed.output, '\n'), 20'000);
        if (!isWatched) EXPECT_LE(listed.peakMemory, mostMemory);
    }
    home.setUp();
    ASSERT_EQ(ask(server, {"backend", "login"}).exitCode, 0);
    for (auto const& [moment, shown] :
         {std::pair("2026-03-11T07:00:00Z", "more"), std::pair("2026-03-12T07:00:00Z", "No events")}) {
        auto const day = home.quillora({"day", "--with-backend", "--at", moment});
        EXPECT_EQ(day.exitCode, 0);
        EXPECT_EQ(day.errors, "");
        EXPECT_THAT(day.output, HasSubstr(shown));
        if (!isWatched) EXPECT_LE(day.peakMemory, mostMemory);
    }
}

TEST_F(BackendTroubleJourneys, aLargerAnswerIsRefused) {
    LoopbackServer const server(always(httpResponse("200 OK", std::string(largestAnswer + 1, ' '))));
    EXPECT_EQ(ask(server, {"backend", "list"}).errors,
              "quillora: the backend's meets were not listed\nThe server's response is too large.\n");
}

TEST_F(BackendTroubleJourneys, aLargeTextFitsTooWhateverItIsFor) {
    std::string const text(largestAnswer - 200, 'x');
    auto titled = eventJSON({});
    titled.replace(titled.find("\"T\""), 3, "\"" + text + "\"");
    LoopbackServer const server(always(httpResponse("200 OK", "[" + titled + "]")));
    auto const listed = ask(server, {"backend", "list"});
    EXPECT_EQ(listed.output, "2026-03-11 09:00  30 min  " + std::string(200, 'x') + "…    e1\n");
    auto const whole = ask(server, {"backend", "list", "--json"});
    EXPECT_THAT(whole.output.size(), testing::Gt(text.size()));
    LoopbackServer const refusing(always(httpResponse("400 Bad Request", text)));
    auto const refused = ask(refusing, {"backend", "list"});
    EXPECT_THAT(refused.errors, testing::EndsWith(text + "\n"));
    if (!isWatched)
        for (auto const peak : {listed.peakMemory, whole.peakMemory, refused.peakMemory})
            EXPECT_LE(peak, mostMemory);
}

TEST_F(BackendTroubleJourneys, aRepetitionThatIsNotKnownIsChangedOnlyOnPurpose) {
    for (auto const& [repeat, customRepeat, shown] : std::vector<std::array<std::string, 3>>{
             {"every_year", "", "every_year"}, {"every_week", "mon|noday", "mon|noday"}}) {
        Event const event{.repeat = repeat, .customRepeat = customRepeat};
        LoopbackServer const server([&](LoopbackServer::Connection const& connection,
                                        std::string const& request) {
            bool const isList = request.starts_with("GET ");
            connection.send(httpResponse("200 OK", isList ? "[" + eventJSON(event) + "]" : eventJSON(event)));
        });
        auto const refused = ask(server, {"backend", "edit", "e1", "--start", "09:00"});
        EXPECT_EQ(refused.exitCode, 1);
        EXPECT_EQ(
            refused.errors,
            "quillora: the meet \"e1\" was not changed: it repeats in a way that Quillora does not know (\"" +
                shown + "\") and would lose with any change; give --repeat to choose another\n");
        EXPECT_EQ(server.requests().size(), 1U);
        EXPECT_THAT(ask(server, {"backend", "list"}).output, HasSubstr("  unknown: \"" + shown + "\"  e1\n"));
        EXPECT_EQ(ask(server, {"backend", "edit", "e1", "--repeat", "none"}).exitCode, 0);
        EXPECT_THAT(server.requests().back(), HasSubstr("\"evtRepeat\":\"never\""));
    }
    LoopbackServer const known(holding({.repeat = "", .customRepeat = "fri||mon"}));
    EXPECT_THAT(ask(known, {"backend", "edit", "e1", "--start", "09:00"}).errors, Not(HasSubstr("repeats")));
}

TEST_F(BackendTroubleJourneys, aRefusalWithoutATextIsToldByItsStatus) {
    for (auto const* status : {"400", "403"}) {
        LoopbackServer const server(always(httpResponse(std::string(status) + " No", "")));
        auto const listed = ask(server, {"backend", "list"});
        EXPECT_EQ(listed.exitCode, 1);
        EXPECT_EQ(listed.errors,
                  "quillora: the backend's meets were not listed: the backend answered with status " +
                      std::string(status) + " and gave no reason\n");
    }
    home.setUp();
    LoopbackServer const server(always(httpResponse("403 No", "")));
    ASSERT_EQ(ask(server, {"backend", "login"}).exitCode, 0);
    EXPECT_EQ(home.quillora({"day", "--with-backend"}).errors,
              "quillora: the backend's meets are not shown: the backend answered with status 403 and gave no "
              "reason\n");
}

} // namespace

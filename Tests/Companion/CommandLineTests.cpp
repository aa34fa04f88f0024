#include "Applications/Companion/CommandLine.h"
#include "Applications/Companion/CommandTable.h"

#include <gtest/gtest.h>

#include <ostream>

namespace Companion {
namespace {

using Words = std::vector<std::string>;

CommandToRun parsedCommand(Words const& words) {
    return std::get<CommandToRun>(parseCommandLine(words, commandTable()));
}

Command const* helpedCommand(Words const& words) {
    return std::get<HelpRequest>(parseCommandLine(words, commandTable())).command;
}

TEST(CommandLineTests, aCommandIsFoundByItsPath) {
    EXPECT_EQ(parsedCommand({"sources", "list"}).command->path, "sources list");
    EXPECT_EQ(parsedCommand({"day"}).command->path, "day");
}

TEST(CommandLineTests, anOptionTakesTheNextWordWhateverItLooksLike) {
    EXPECT_EQ(parsedCommand({"day", "--offset", "-3"}).values.option("--offset"), "-3");
    EXPECT_EQ(parsedCommand({"day", "--offset=-3"}).values.option("--offset"), "-3");
    EXPECT_EQ(parsedCommand({"day", "--png", "-"}).values.option("--png"), "-");
    EXPECT_EQ(parsedCommand({"day", "--png=--"}).values.option("--png"), "--");
}

TEST(CommandLineTests, anOptionThatWasNotGivenIsAbsent) {
    auto const values = parsedCommand({"day", "--json"}).values;
    EXPECT_TRUE(values.has("--json"));
    EXPECT_FALSE(values.has("--offset"));
    EXPECT_EQ(values.option("--offset"), std::nullopt);
}

TEST(CommandLineTests, argumentsKeepTheirOrderAmongOptions) {
    auto const values = parsedCommand({"sources", "add", "DIR", "--title", "Old job"}).values;
    EXPECT_EQ(values.arguments(), Words({"DIR"}));
    EXPECT_EQ(values.option("--title"), "Old job");
    EXPECT_EQ(parsedCommand({"calendars", "hide", "b", "a"}).values.arguments(), Words({"b", "a"}));
}

TEST(CommandLineTests, anArgumentMayBeNamedAsACommandIs) {
    auto const command = parsedCommand({"occurrences", "day", "--from", "2026-03-01", "--to", "2026-03-02"});
    EXPECT_EQ(command.command->path, "occurrences");
    EXPECT_EQ(command.values.arguments(), Words({"day"}));
}

TEST(CommandLineTests, afterTwoDashesEveryWordIsAnArgument) {
    EXPECT_EQ(parsedCommand({"calendars", "hide", "--", "-x", "--json"}).values.arguments(),
              Words({"-x", "--json"}));
}

TEST(CommandLineTests, bracketsInAnArgumentAreNoList) {
    EXPECT_EQ(parsedCommand({"calendars", "hide", "[a,b]"}).values.arguments(), Words({"[a,b]"}));
    EXPECT_EQ(parsedCommand({"sources", "add", "x", "--title", "[a,b]"}).values.option("--title"), "[a,b]");
}

TEST(CommandLineTests, helpIsThereOnEveryLevel) {
    EXPECT_EQ(helpedCommand({}), nullptr);
    EXPECT_EQ(helpedCommand({"--help"}), nullptr);
    EXPECT_EQ(helpedCommand({"sources", "--help"})->path, "sources");
    EXPECT_EQ(helpedCommand({"sources", "add", "-h"})->path, "sources add");
    EXPECT_EQ(helpedCommand({"day", "--offset", "1", "--help"})->path, "day");
    EXPECT_EQ(helpedCommand({"day", "--help", "--offset"})->path, "day");
}

TEST(CommandLineTests, theVersionIsAskedForAtTheTopAlone) {
    EXPECT_TRUE(std::holds_alternative<VersionRequest>(parseCommandLine({"--version"}, commandTable())));
    EXPECT_THROW(parseCommandLine({"day", "--version"}, commandTable()), CommandError);
}

struct WrongUse {
    char const* name;
    Words words;
    char const* message;
};

void PrintTo(WrongUse const& wrongUse, std::ostream* stream) {
    *stream << wrongUse.name;
}

class WrongUseTests : public testing::TestWithParam<WrongUse> {};

TEST_P(WrongUseTests, isToldInOneLine) {
    try {
        parseCommandLine(GetParam().words, commandTable());
        FAIL() << "the command line was taken";
    } catch (CommandError const& error) {
        EXPECT_EQ(error.code(), ExitCode::wrongUse);
        EXPECT_STREQ(error.what(), GetParam().message);
    }
}

INSTANTIATE_TEST_SUITE_P(
    CommandLine, WrongUseTests,
    testing::Values(
        WrongUse{"unknownCommand", {"dya"}, R"(there is no command "dya"; see "quillora --help")"},
        WrongUse{"unknownMember",
                 {"sources", "delete"},
                 R"(there is no command "sources delete"; see "quillora --help")"},
        WrongUse{"groupAlone",
                 {"sources"},
                 R"(sources needs a command: list, add, remove or refresh; see "quillora sources --help")"},
        WrongUse{
            "unknownOption", {"day", "--frob"}, R"(there is no option "--frob"; see "quillora day --help")"},
        WrongUse{"unknownOptionWithValue",
                 {"day", "--frob=1"},
                 R"(there is no option "--frob=1"; see "quillora day --help")"},
        WrongUse{"optionOfAnotherCommand",
                 {"next", "--offset", "1"},
                 R"(there is no option "--offset"; see "quillora next --help")"},
        WrongUse{"optionOfTheProgram", {"--json"}, R"(there is no option "--json"; see "quillora --help")"},
        WrongUse{"beginningOfAnOption",
                 {"day", "--off", "1"},
                 R"(there is no option "--off"; see "quillora day --help")"},
        WrongUse{"optionWithoutItsValue",
                 {"day", "--offset"},
                 R"(--offset needs a value: N; see "quillora day --help")"},
        WrongUse{"optionWithTheEndOfTheOptions",
                 {"day", "--png", "--"},
                 R"(--png needs a value: FILE; see "quillora day --help")"},
        WrongUse{"optionWithTheEndOfTheOptionsAndMore",
                 {"sources", "add", "--title", "--", "DIR"},
                 R"(--title needs a value: TITLE; see "quillora sources add --help")"},
        WrongUse{"optionWithNothing",
                 {"day", "--offset="},
                 R"(--offset needs a value: N; see "quillora day --help")"},
        WrongUse{"switchWithAValue",
                 {"day", "--json=maybe"},
                 R"(--json takes no value; see "quillora day --help")"},
        WrongUse{"switchTwice", {"day", "--json", "--json"}, "--json can be given only once"},
        WrongUse{"optionTwice", {"day", "--offset", "1", "--offset", "1"}, "--offset can be given only once"},
        WrongUse{"unknownChoice",
                 {"day", "--family", "huge"},
                 R"(--family takes small, medium or large, not "huge")"},
        WrongUse{
            "choiceInCapitals", {"day", "--scheme", "Dark"}, R"(--scheme takes light or dark, not "Dark")"},
        WrongUse{"optionsThatExclude",
                 {"day", "--day", "2026-03-11", "--offset", "1"},
                 "--offset and --day cannot be given together"},
        WrongUse{"missingOption",
                 {"occurrences", "a.ics", "--from", "2026-03-01"},
                 R"(occurrences needs --to; see "quillora occurrences --help")"},
        WrongUse{"missingArgument",
                 {"sources", "add"},
                 R"(sources add needs DIR; see "quillora sources add --help")"},
        WrongUse{"oneArgumentTooMany",
                 {"sources", "add", "a", "b"},
                 R"(sources add does not take "b"; see "quillora sources add --help")"},
        WrongUse{"argumentWhereNoneIs",
                 {"day", "tomorrow"},
                 R"(day does not take "tomorrow"; see "quillora day --help")"},
        WrongUse{"argumentThatIsNoneOfItsValues",
                 {"alarm", "mode", "Hero"},
                 R"(MODE takes voice, hero or funk, not "Hero")"},
        WrongUse{"oneMoreThanAnArgumentThatMayBeLeftOut",
                 {"alarm", "mode", "hero", "funk"},
                 R"(alarm mode does not take "funk"; see "quillora alarm mode --help")"},
        WrongUse{"lineBreakInAWord", {"da\ny"}, R"(there is no command "da y"; see "quillora --help")"}),
    [](auto const& instance) { return instance.param.name; });

TEST(CommandLineTests, anArgumentMayBeLeftOutOrEmpty) {
    EXPECT_EQ(parsedCommand({"alarm", "template"}).values.arguments(), Words{});
    EXPECT_EQ(parsedCommand({"alarm", "template", ""}).values.arguments(), Words{""});
}

TEST(CommandLineTests, bytesThatAreNoTextAreShownAsSuch) {
    try {
        parseCommandLine({"\xff\x1b[31m"}, commandTable());
        FAIL() << "the command line was taken";
    } catch (CommandError const& error) {
        EXPECT_STREQ(error.what(), "there is no command \"\uFFFD\uFFFD[31m\"; see \"quillora --help\"");
    }
}

} // namespace
} // namespace Companion

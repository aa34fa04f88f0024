#include "Applications/Companion/CommandLine.h"
#include "Applications/Companion/CommandTable.h"
#include "Applications/Companion/Help.h"
#include "Foundation/Text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>

namespace Companion {
namespace {

std::string parentOf(std::string const& path) {
    auto const blank = path.rfind(' ');
    return blank == std::string::npos ? "" : path.substr(0, blank);
}

// The words of an example as a shell would split them; examples use no quotes but "..." and no variables.
std::vector<std::string> wordsOf(std::string const& commandLine) {
    std::vector<std::string> words;
    std::string word;
    bool isQuoted = false;
    for (char const character : commandLine) {
        if (character == '"') {
            isQuoted = !isQuoted;
        } else if (character == ' ' && !isQuoted) {
            words.push_back(word);
            word.clear();
        } else {
            word += character;
        }
    }
    words.push_back(word);
    // Where input comes from is the shell's affair.
    if (auto const redirection = std::ranges::find(words, "<"); redirection != words.end())
        words.erase(redirection, redirection + 2);
    return words;
}

TEST(CommandTableTests, everyPathIsThereOnceAndAfterItsGroup) {
    std::set<std::string> seen;
    for (auto const& command : commandTable()) {
        EXPECT_TRUE(seen.insert(command.path).second) << command.path;
        auto const parent = parentOf(command.path);
        EXPECT_TRUE(parent.empty() || seen.contains(parent)) << command.path;
    }
}

TEST(CommandTableTests, aGroupRunsNothingAndACommandHasNoMembers) {
    for (auto const& command : commandTable())
        EXPECT_EQ(command.run == nullptr, !commandsBelow(command.path).empty()) << command.path;
}

TEST(CommandTableTests, everySummaryIsOneLineWithoutAFullStop) {
    for (auto const& command : commandTable()) {
        auto const summary = command.summary.text();
        EXPECT_FALSE(summary.empty()) << command.path;
        EXPECT_FALSE(summary.ends_with('.')) << command.path;
        EXPECT_EQ(summary.find('\n'), std::string::npos) << command.path;
    }
}

TEST(CommandTableTests, everyExampleIsACommandLineThatTheProgramTakes) {
    std::size_t examples = 0;
    for (auto const& command : commandTable()) {
        for (auto const& example : command.examples) {
            auto words = wordsOf(example.commandLine);
            ASSERT_EQ(words.front(), "quillora") << example.commandLine;
            words.erase(words.begin());
            auto const line = parseCommandLine(words, commandTable());
            ASSERT_TRUE(std::holds_alternative<CommandToRun>(line)) << example.commandLine;
            EXPECT_EQ(std::get<CommandToRun>(line).command->path, command.path) << example.commandLine;
            ++examples;
        }
    }
    EXPECT_GE(examples, 10U);
}

TEST(CommandTableTests, whatAnOptionExcludesIsAnOptionOfTheSameCommand) {
    for (auto const& command : commandTable())
        for (auto const& option : command.options)
            for (auto const& other : option.excludes)
                EXPECT_NE(std::ranges::find(command.options, other, &CommandOption::name),
                          command.options.end())
                    << command.path << " " << option.name;
}

TEST(HelpTests, everyPageKeepsWithinEightyColumns) {
    std::vector<std::string> pages = {helpText(nullptr)};
    for (auto const& command : commandTable())
        pages.push_back(helpText(&command));
    for (auto const& page : pages) {
        std::istringstream lines(page);
        for (std::string line; std::getline(lines, line);) {
            EXPECT_LE(Foundation::Text::terminalWidth(line), 80U) << line;
            EXPECT_FALSE(line.ends_with(' ')) << line;
        }
    }
}

TEST(HelpTests, aCommandsPageTellsAllThatItsTableHolds) {
    for (auto const& command : commandTable()) {
        auto const page = helpText(&command);
        for (auto const& option : command.options)
            EXPECT_NE(page.find("\n  " + option.name), std::string::npos);
        for (auto const& argument : command.arguments)
            EXPECT_NE(page.find("\n  " + argument.name), std::string::npos) << command.path;
        for (auto const& example : command.examples)
            EXPECT_NE(page.find(example.commandLine), std::string::npos) << command.path;
    }
}

TEST(HelpTests, aCommandsPageNamesTheOnlyWordsThatAValueTakes) {
    std::size_t named = 0;
    auto const expectNamed = [&](Command const& command, std::string const& meaning,
                                 std::vector<std::string> const& choices) {
        for (auto const& choice : choices) {
            EXPECT_NE(meaning.find(choice), std::string::npos) << command.path << ": " << choice;
            ++named;
        }
    };
    for (auto const& command : commandTable()) {
        for (auto const& option : command.options)
            expectNamed(command, option.help, option.choices);
        for (auto const& argument : command.arguments)
            expectNamed(command, argument.help, argument.choices);
    }
    EXPECT_GE(named, 10U);
}

TEST(HelpTests, theProgramsPageNamesEveryCommandThatRuns) {
    auto const page = helpText(nullptr);
    for (auto const& command : commandTable()) {
        if (command.run == nullptr) continue; // A group is named by its members.
        EXPECT_NE(page.find("\n  " + command.path + " "), std::string::npos) << command.path;
    }
}

TEST(HelpTests, aSynopsisMarksWhatMayBeLeftOut) {
    EXPECT_EQ(synopsis(*findCommand("sources add")), "quillora sources add DIR [--title TITLE]");
    EXPECT_EQ(synopsis(*findCommand("calendars hide")), "quillora calendars hide ID...");
    EXPECT_EQ(synopsis(*findCommand("occurrences")),
              "quillora occurrences FILE|DIR --from TIME --to TIME [--zone ZONE] [--json]");
    EXPECT_EQ(synopsis(*findCommand("access")), "quillora access COMMAND");
    EXPECT_EQ(synopsis(*findCommand("meet show")),
              "quillora meet show [ID] [--offset N] [--day DATE] [--json]");
}

} // namespace
} // namespace Companion

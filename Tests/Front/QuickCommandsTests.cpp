#include "Applications/Front/QuickCommands.h"

#include "Applications/Companion/CommandTable.h"
#include "Applications/Companion/DayRequest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>

namespace Front {
namespace {

using Words = std::vector<std::string>;

struct Row {
    std::string name;
    Words words;
};

void PrintTo(Row const& row, std::ostream* stream) {
    *stream << row.name;
}

class QuickWordsTests : public testing::TestWithParam<Row> {};

TEST_P(QuickWordsTests, areRunHere) {
    auto const command = quickCommand(GetParam().words);
    ASSERT_TRUE(command.has_value());
    EXPECT_EQ(command->command->path, GetParam().words.front());
    EXPECT_NE(command->command->run, nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    , QuickWordsTests,
    testing::Values(Row{"day", {"day"}}, Row{"document", {"day", "--json", "--day", "2026-03-11"}},
                    Row{"statusBar", {"day", "--waybar"}}, Row{"followed", {"day", "--waybar", "--follow"}},
                    Row{"live", {"day", "--live"}}, Row{"wrongValue", {"day", "--offset", "many"}},
                    Row{"next", {"next"}}, Row{"previous", {"previous"}}, Row{"today", {"today"}}),
    [](auto const& row) { return row.param.name; });

class OtherWordsTests : public testing::TestWithParam<Row> {};

TEST_P(OtherWordsTests, areTheWholeCompanions) {
    EXPECT_FALSE(quickCommand(GetParam().words).has_value());
}

INSTANTIATE_TEST_SUITE_P(
    , OtherWordsTests,
    testing::Values(Row{"none", {}}, Row{"anotherCommand", {"sources", "list"}}, Row{"nothingKnown", {"dya"}},
                    Row{"nothingAtAll", {""}}, Row{"help", {"--help"}}, Row{"version", {"--version"}},
                    Row{"helpOfADay", {"day", "--json", "--help"}},
                    Row{"picture", {"day", "--png", "day.png"}}, Row{"drawing", {"day", "--svg=-"}},
                    Row{"document", {"day", "--text", "--pdf", "day.pdf"}},
                    Row{"backend", {"day", "--with-backend"}}, Row{"unknownOption", {"day", "--frob"}},
                    Row{"missingValue", {"day", "--offset"}}, Row{"tooMuch", {"next", "2"}},
                    Row{"excluded", {"day", "--live", "--json"}}),
    [](auto const& row) { return row.param.name; });

TEST(QuickCommandsTests, theyAreThoseOfTheTable) {
    EXPECT_FALSE(quickCommands().empty());
    for (auto const& quick : quickCommands()) {
        auto const* listed = Companion::findCommand(quick.path);
        ASSERT_NE(listed, nullptr) << quick.path;
        EXPECT_EQ(quick.summary.text(), listed->summary.text());
        EXPECT_TRUE(std::ranges::equal(quick.options, listed->options, {}, &Companion::CommandOption::name,
                                       &Companion::CommandOption::name))
            << quick.path;
    }
}

// A new way to draw a day must not be taken for a quick one.
TEST(QuickCommandsTests, aFileNamedForADayIsAPicture) {
    std::vector<std::string> files;
    for (auto const& option : Companion::findCommand("day", quickCommands())->options)
        if (option.kind == Companion::ValueKind::file) files.push_back(option.name);
    EXPECT_TRUE(std::ranges::equal(files, Companion::pictureOptions));
}

} // namespace
} // namespace Front

#include "PrivateHome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace {

using testing::StartsWith;

class HTMLLineJourneys : public testing::Test {
protected:
    ProgramResult line(std::string input) {
        return home.quillora({"html-line"}, ProgramRun::Output::captured, std::move(input));
    }

    PrivateHome home;
};

TEST_F(HTMLLineJourneys, htmlBecomesItsFirstMeaningfulLine) {
    auto const result = line("<p>--- </p>\n<p>• Agenda: review</p>\n<p>More</p>\n");
    EXPECT_EQ(result.output, "Agenda: review\n");
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(result.exitCode, 0);
}

TEST_F(HTMLLineJourneys, plainTextKeepsItsLines) {
    EXPECT_EQ(line("Line one\nLine two").output, "Line one\nLine two\n");
    EXPECT_EQ(line("Line one\nLine two\n").output, "Line one\nLine two\n");
}

TEST_F(HTMLLineJourneys, nothingGivesNothing) {
    auto const result = line("");
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.exitCode, 0);
}

TEST_F(HTMLLineJourneys, whatCouldSteerATerminalIsMadeHarmless) {
    EXPECT_EQ(line("<p>a\u202E&#x202D;b</p>").output, "a\uFFFD\uFFFDb\n");
    EXPECT_EQ(line("plain \x1B[2J\r\n\xFF").output, "plain \uFFFD[2J \n\uFFFD\n");
}

TEST_F(HTMLLineJourneys, nothingIsWrittenInTheHome) {
    auto const before = home.snapshot();
    line("<p>a</p>");
    EXPECT_EQ(home.snapshot(), before);
}

TEST_F(HTMLLineJourneys, anInputWithoutEndIsRefused) {
    auto const result = line(std::string(17UL * 1024 * 1024, '<'));
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.errors, StartsWith("quillora: standard input holds more than 16 MiB"));
}

} // namespace

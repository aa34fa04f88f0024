#include "PrivateHome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace {

using testing::HasSubstr;
using testing::Not;
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

TEST_F(HTMLLineJourneys, ofALongLineTheFirstThousandCharactersAreShown) {
    EXPECT_EQ(line("<p>" + std::string(5000, 'a')).output, std::string(1000, 'a') + "…\n");
    EXPECT_EQ(line(std::string(1001, 'a') + "\nb").output, std::string(1000, 'a') + "…\nb\n");
    EXPECT_EQ(line(std::string(1000, 'a')).output, std::string(1000, 'a') + "\n");
}

TEST_F(HTMLLineJourneys, ofALongTextTheBeginningIsShown) {
    std::string text;
    while (text.size() < 1024UL * 1024)
        text += "añb\n"; // Five bytes, so that the limit falls on various places.
    auto const output = line(text).output;
    EXPECT_LE(output.size(), 64U * 1024 + 4);
    EXPECT_TRUE(output.starts_with("añb\nañb\n"));
    EXPECT_TRUE(output.ends_with("…\n"));
    EXPECT_THAT(output, Not(HasSubstr("\uFFFD")));
}

TEST_F(HTMLLineJourneys, bytesThatAreNoTextDoNotMultiply) {
    auto const output = line("<p>" + std::string(10UL * 1024 * 1024, '\xFF')).output;
    EXPECT_TRUE(output.starts_with("<p>\uFFFD"));
    EXPECT_LE(output.size(), 4096U);
    // Each of these lines is three bytes of output for one.
    std::string broken;
    while (broken.size() < 1024UL * 1024)
        broken += "\xFF\n";
    EXPECT_LE(line(broken).output.size(), 64U * 1024 * 2 + 4);
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

#include "Platform/Terminal/FullScreenTerminal.h"

#include <gtest/gtest.h>

namespace Platform {
namespace {

using Kind = TerminalKey::Kind;

std::vector<Kind> kindsOf(std::string bytes) {
    std::vector<Kind> kinds;
    for (auto const& key : takeKeys(bytes))
        kinds.push_back(key.kind);
    return kinds;
}

TEST(TerminalKeysTests, charactersComeAsTheyAre) {
    std::string bytes = "q\x04";
    EXPECT_EQ(takeKeys(bytes), (std::vector<TerminalKey>{{.kind = Kind::character, .character = 'q'},
                                                         {.kind = Kind::character, .character = '\x04'}}));
    EXPECT_EQ(bytes, "");
}

TEST(TerminalKeysTests, arrowsAreToldApartInBothForms) {
    EXPECT_EQ(kindsOf("\x1b[D\x1b[C\x1b[A\x1b[B"),
              (std::vector{Kind::left, Kind::right, Kind::up, Kind::down}));
    EXPECT_EQ(kindsOf("\x1bOD\x1bOC"), (std::vector{Kind::left, Kind::right}));
    EXPECT_EQ(kindsOf("\x1b[H\x1b[1~\x1b[F\x1b[4~"),
              (std::vector{Kind::home, Kind::home, Kind::end, Kind::end}));
}

TEST(TerminalKeysTests, otherSequencesArePassedOver) {
    EXPECT_EQ(kindsOf("\x1b[15~\x1b[1;5Cn"), std::vector{Kind::character});
}

TEST(TerminalKeysTests, aSequenceThatIsCutOffIsTakenUpLater) {
    std::string bytes = "n\x1b[";
    EXPECT_EQ(takeKeys(bytes).size(), 1U);
    EXPECT_EQ(bytes, "\x1b[");
    bytes += "C";
    EXPECT_EQ(takeKeys(bytes), std::vector<TerminalKey>{{.kind = Kind::right}});
    EXPECT_EQ(bytes, "");
}

TEST(TerminalKeysTests, whatNeverEndsIsNotKept) {
    std::string bytes = "\x1b[" + std::string(100, ';');
    (void)takeKeys(bytes);
    EXPECT_LT(bytes.size(), 32U);
}

} // namespace
} // namespace Platform

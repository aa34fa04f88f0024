#include "Applications/Companion/ShellWord.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>

using Companion::shellWord;

namespace {

// What a real shell makes of a command line's second word.
std::string readByAShell(std::string const& word) {
    auto* const shell = ::popen(("printf %s " + word).c_str(), "r");
    std::array<char, 256> buffer{};
    auto const length = std::fread(buffer.data(), 1, buffer.size(), shell);
    ::pclose(shell);
    return {buffer.data(), length};
}

} // namespace

TEST(ShellWordTests, plainWordsStayAsTheyAre) {
    for (auto const* word : {"eventKit", "/home/ann/.calendars", "a-b_c+d:e@f%g,h=i"})
        EXPECT_EQ(shellWord(word), word);
}

TEST(ShellWordTests, aShellReadsWhatWasMeant) {
    for (auto const* text :
         {"a b", "it's", "$HOME", "`id`", "a;b", "*", "~ann", "\"q\"", "a\\b", "", "Año", "#"})
        EXPECT_EQ(readByAShell(shellWord(text)), text);
}

TEST(ShellWordTests, nothingBreaksTheLine) {
    EXPECT_EQ(shellWord("a\nb\x1b\xff"), "'a b\xef\xbf\xbd\xef\xbf\xbd'");
}

#include "Platform/Resources/TextPlaceholders.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace {

TEST(TextPlaceholdersTests, aTextIsFilledInItsOwnOrder) {
    struct Row {
        char const* name;
        std::string text;
        std::vector<std::string> values;
        std::string filled;
    };
    for (auto const& row : {
             Row{.name = "no place", .text = "plain", .values = {"x"}, .filled = "plain"},
             Row{.name = "in order", .text = "%1$@ of %2$@", .values = {"a", "b"}, .filled = "a of b"},
             Row{.name = "turned round", .text = "%2$@ %1$@", .values = {"a", "b"}, .filled = "b a"},
             Row{.name = "one twice", .text = "%1$@%1$@", .values = {"a"}, .filled = "aa"},
             Row{.name = "per cent", .text = "100%% %1$@ %%1$@", .values = {"a"}, .filled = "100% a %1$@"},
             Row{.name = "a place in a value",
                 .text = "%1$@ %2$@",
                 .values = {"%2$@", "%%"},
                 .filled = "%2$@ %%"},
             Row{.name = "no such value", .text = "%1$@ %2$@", .values = {"a"}, .filled = "a %2$@"},
             Row{.name = "other forms",
                 .text = "%s %n %@ %0$@ %1$d %",
                 .values = {"a"},
                 .filled = "%s %n %@ %0$@ %1$d %"},
             Row{.name = "cut short", .text = "%1$", .values = {"a"}, .filled = "%1$"},
             Row{.name = "empty", .text = "", .values = {}, .filled = ""},
         }) {
        EXPECT_EQ(Platform::withValues(row.text, row.values), row.filled) << row.name;
    }
}

TEST(TextPlaceholdersTests, theValuesOfAFilledTextAreFoundAgain) {
    struct Row {
        char const* name;
        std::string text;
        std::string filled;
        std::optional<std::vector<std::string>> values;
    };
    using Values = std::vector<std::string>;
    for (auto const& row : {
             Row{.name = "no place", .text = "it is gone", .filled = "it is gone", .values = Values{}},
             Row{.name = "another text", .text = "it is gone", .filled = "it is here", .values = {}},
             Row{.name = "in the middle", .text = "a %1$@ c", .filled = "a b c", .values = Values{"b"}},
             Row{.name = "at both ends",
                 .text = "%1$@: %2$@",
                 .filled = "a: b: c",
                 .values = Values{"a", "b: c"}},
             Row{.name = "of nothing", .text = "(%1$@)", .filled = "()", .values = Values{""}},
             Row{.name = "cut short", .text = "(%1$@) end", .filled = "(a) en", .values = {}},
             Row{.name = "words overlap", .text = "ab%1$@bc", .filled = "abc", .values = {}},
             Row{.name = "the words come again",
                 .text = "%1$@; done",
                 .filled = "a; done; done",
                 .values = Values{"a; done"}},
             Row{.name = "one is missing", .text = "%1$@ and %2$@", .filled = "a or b", .values = {}},
         }) {
        EXPECT_EQ(Platform::valuesIn(row.text, row.filled), row.values) << row.name;
    }
}

} // namespace

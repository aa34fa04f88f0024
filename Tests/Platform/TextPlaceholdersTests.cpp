#include "Platform/Resources/TextPlaceholders.h"

#include <gtest/gtest.h>

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

} // namespace

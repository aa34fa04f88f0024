#include "Applications/Widget/WidgetOptions.h"

#include "Foundation/TimeZone.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Platform::ColorScheme;
using Platform::WidgetFamily;
using Platform::WindowPlacement;
using Widget::WidgetOptions;

std::expected<WidgetOptions, Widget::EarlyEnd> parsed(std::vector<std::string> words) {
    words.insert(words.begin(), "quillora-widget");
    std::vector<char const*> pointers;
    for (auto const& word : words) {
        pointers.push_back(word.c_str());
    }
    return Widget::parseCommandLine(static_cast<int>(pointers.size()), pointers.data(),
                                    Foundation::Calendar(Foundation::TimeZone::fixedOffset(3600)));
}

TEST(WidgetOptionsTests, withoutWordsItIsTheDefault) {
    EXPECT_EQ(parsed({}), WidgetOptions{});
    EXPECT_EQ(WidgetOptions{}.placement, WindowPlacement::desktop);
}

TEST(WidgetOptionsTests, everyOptionIsRead) {
    WidgetOptions const expected{
        .family = WidgetFamily::systemSmall,
        .fixedMoment = Foundation::Date{.secondsSince1970 = 1'773'216'000},
        .colorScheme = ColorScheme::dark,
        .placement = WindowPlacement::window,
        .printsFirstFrame = true,
        .quitsAfterFirstFrame = true,
    };
    EXPECT_EQ(parsed({"--family", "small", "--at", "2026-03-11T09:00", "--scheme=dark", "--window",
                      "--print-first-frame", "--quit-after-first-frame"}),
              expected);
}

TEST(WidgetOptionsTests, momentIsTheViewersUnlessItBearsAnOffset) {
    EXPECT_EQ(parsed({"--at", "2026-03-11T08:00:00Z"}), parsed({"--at", "2026-03-11T09:00:00"}));
}

TEST(WidgetOptionsTests, autoFollowsTheDesktop) {
    EXPECT_EQ(parsed({"--scheme", "auto"}), WidgetOptions{});
    EXPECT_EQ(parsed({"--desktop"}), WidgetOptions{});
}

TEST(WidgetOptionsTests, wrongUseIsOneClearLine) {
    struct Row {
        std::vector<std::string> words;
        std::string text;
    };
    for (auto const& row : {
             Row{.words = {"--family", "huge"},
                 .text = "There is no family \"huge\"; use small, medium or large."},
             Row{.words = {"--family", "extraLarge"},
                 .text = "There is no family \"extraLarge\"; use small, medium or large."},
             Row{.words = {"--at", "tomorrow"},
                 .text =
                     "\"tomorrow\" is no moment; write it like 2026-03-11T09:00 or 2026-03-11T08:00:00Z."},
             Row{.words = {"--scheme", "blue"},
                 .text = "There is no colour scheme \"blue\"; use light, dark or auto."},
             Row{.words = {"--window", "--desktop"},
                 .text = "--window and --desktop exclude each other; give one of them."},
             Row{.words = {"--colour"},
                 .text = "\"--colour\" is no option; quillora-widget --help lists them."},
             Row{.words = {"today"}, .text = "\"today\" is no option; quillora-widget --help lists them."},
             Row{.words = {"--family"},
                 .text = "--family needs a value; quillora-widget --help lists the options."},
             Row{.words = {"--window", "--at="},
                 .text = "--at needs a value; quillora-widget --help lists the options."},
             Row{.words = {"--family", ""}, .text = "There is no family \"\"; use small, medium or large."},
             Row{.words = {"--window=maybe"},
                 .text = "--window takes no value; quillora-widget --help lists the options."},
             Row{.words = {"--desktop=3"},
                 .text = "--desktop takes no value; quillora-widget --help lists the options."},
             Row{.words = {"--family", "small", "--family", "large"},
                 .text = "--family can be given only once."},
             Row{.words = {"--window", "--window"}, .text = "--window can be given only once."},
             Row{.words = {"-x"}, .text = "\"-x\" is no option; quillora-widget --help lists them."},
             Row{.words = {"--fam=small"},
                 .text = "\"--fam=small\" is no option; quillora-widget --help lists them."},
             Row{.words = {"--"}, .text = "\"--\" is no option; quillora-widget --help lists them."},
             Row{.words = {"--=x"}, .text = "\"--=x\" is no option; quillora-widget --help lists them."},
             Row{.words = {"a\nb\x1b"},
                 .text = "\"a b\uFFFD\" is no option; quillora-widget --help lists them."},
             Row{.words = {"[a,b]"}, .text = "\"[a,b]\" is no option; quillora-widget --help lists them."},
         }) {
        SCOPED_TRACE(row.text);
        auto const result = parsed(row.words);
        ASSERT_FALSE(result.has_value());
        EXPECT_EQ(result.error(), (Widget::EarlyEnd{.exitCode = 2, .text = row.text}));
    }
}

TEST(WidgetOptionsTests, emptyValuesAreWrongUse) {
    for (std::string const option : {"--family", "--at", "--scheme"}) {
        SCOPED_TRACE(option);
        auto const result = parsed({option, ""});
        ASSERT_FALSE(result.has_value());
        EXPECT_EQ(result.error().exitCode, 2);
    }
}

TEST(WidgetOptionsTests, helpAndVersionAreAnswersWhateverElseStands) {
    for (std::vector<std::string> const& words : {std::vector<std::string>{"--help"},
                                                  {"-h", "--family", "huge"},
                                                  {"--version"},
                                                  {"--help", "--help"},
                                                  {"--help", "--family"}}) {
        auto const result = parsed(words);
        ASSERT_FALSE(result.has_value());
        EXPECT_EQ(result.error().exitCode, 0);
        EXPECT_TRUE(result.error().text.contains("quillora-widget"));
        EXPECT_TRUE(result.error().text.ends_with('\n'));
    }
}

} // namespace

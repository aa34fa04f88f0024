#include "WidgetExtension/HTMLAttributedTextUtil.h"

#include "Platform/HTMLReader/GivenHTMLReader.h"
#include "Platform/HTMLReader/LibXMLHTMLReader.h"
#include "Platform/WidgetHost/CallingThreadMainExecutor.h"
#include "Platform/WidgetHost/MainLoopExecutor.h"
#include "Platform/WidgetHost/QueuedMainLoop.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <thread>

using namespace WidgetExtension;

namespace {

std::optional<AttributedString> parsed(std::string_view text) {
    Platform::CallingThreadMainExecutor main;
    return HTMLAttributedTextUtil::parse(text, Platform::LibXMLHTMLReader(), main);
}

// What is picked from a text that was rendered so.
std::string lineOfRendered(std::string const& rendered) {
    Platform::CallingThreadMainExecutor main;
    Platform::GivenHTMLReader const reader(rendered);
    return HTMLAttributedTextUtil::parse("<p>", reader, main).value().string;
}

TEST(HTMLAttributedTextUtilTests, anEmptyTextHasNoLine) {
    EXPECT_EQ(parsed(""), std::nullopt);
}

struct TextCase {
    std::string name;
    std::string text;
    std::string line;
};

class HTMLDescriptions : public testing::TestWithParam<TextCase> {};

TEST_P(HTMLDescriptions, becomeOneLine) {
    EXPECT_EQ(parsed(GetParam().text), AttributedString{GetParam().line});
}

INSTANTIATE_TEST_SUITE_P(
    Table, HTMLDescriptions,
    testing::Values(TextCase{"plainTextStaysWhole", "Line one\nLine two", "Line one\nLine two"},
                    TextCase{"plainDecorationStays", " -- Notes & more &amp; ", " -- Notes & more &amp; "},
                    TextCase{"blankTextStays", " \n ", " \n "},
                    TextCase{"separatorParagraphIsSkipped", "<p>--- </p><p>• Agenda: review</p>",
                             "Agenda: review"},
                    TextCase{"ruleAloneIsShown", "<p>=====</p>", "====="},
                    TextCase{"dotsAreDropped", "<b>...Join at 10</b>", "Join at 10"},
                    TextCase{"blankEndsTheDropping", "<p>– – Notes</p>", "– Notes"},
                    TextCase{"punctuationIsSkipped", "<p>!!!</p><p>Hello</p>", "Hello"},
                    TextCase{"punctuationAloneIsShown", "<p>!!!</p>", "!!!"},
                    TextCase{"trailingSeparatorsStay", "<p>-- Notes --</p>", "Notes --"},
                    TextCase{"listItem", "<ul><li>Agenda</li></ul>", "Agenda"},
                    TextCase{"numberedItem", "<ol><li>Agenda</li></ol>", "1. Agenda"},
                    TextCase{"emptyDocument", "<p></p>", ""},
                    TextCase{"lessThanInPlainText", "2 < 3 and more\n\nsecond", "2 < 3 and more second"},
                    TextCase{"noBreakSpacesAreTrimmed", "<p>&nbsp;&nbsp;Agenda&nbsp;</p>", "Agenda"},
                    TextCase{"notUTF8StaysWhole", "<p>\xFF</p>\n-", "<p>\xFF</p>\n-"}),
    [](auto const& given) { return given.param.name; });

class RenderedTexts : public testing::TestWithParam<TextCase> {};

TEST_P(RenderedTexts, yieldTheirFirstMeaningfulLine) {
    EXPECT_EQ(lineOfRendered(GetParam().text), GetParam().line);
}

INSTANTIATE_TEST_SUITE_P(
    Newlines, RenderedTexts,
    testing::Values(TextCase{"lineFeed", "a\nb", "a"}, TextCase{"carriageReturn", "a\rb", "a"},
                    TextCase{"both", "-\r\nb", "b"}, TextCase{"verticalTab", "a\vb", "a"},
                    TextCase{"formFeed", "a\fb", "a"}, TextCase{"nextLine", "a\u0085b", "a"},
                    TextCase{"lineSeparator", "a\u2028b", "a"},
                    TextCase{"paragraphSeparator", "a\u2029b", "a"}),
    [](auto const& given) { return given.param.name; });

INSTANTIATE_TEST_SUITE_P(Separators, RenderedTexts,
                         testing::Values(TextCase{"all", "-_=~*#•·.—–|x", "x"}, TextCase{"comma", ",x", ",x"},
                                         TextCase{"plus", "+x", "+x"},
                                         TextCase{"blanksAround", "\t - \u3000x\u200B", "x"},
                                         TextCase{"byteOrderMarkIsNoBlank", "\uFEFFx", "\uFEFFx"},
                                         TextCase{"separatorInside", "a - b", "a - b"},
                                         TextCase{"onlySeparators", "-=-\n•\n", "-=-\n•"},
                                         TextCase{"blanksOnly", " \n\t", ""},
                                         TextCase{"markGoesWithItsSeparator", "-\u0301x", "x"},
                                         TextCase{"markOnASecondSeparator", "--\u0301x", "x"},
                                         TextCase{"keycap", "#\uFE0F\u20E3 Title", "Title"},
                                         TextCase{"keycapAmongSeparators", "*#\uFE0F\u20E3- Title", "Title"}),
                         [](auto const& given) { return given.param.name; });

INSTANTIATE_TEST_SUITE_P(Alphanumerics, RenderedTexts,
                         testing::Values(TextCase{"digit", "!\n7", "7"}, TextCase{"fraction", "!\n½", "½"},
                                         TextCase{"romanNumeral", "!\nⅧ", "Ⅷ"},
                                         TextCase{"ideograph", "!\n漢", "漢"},
                                         TextCase{"emojiAlone", "👍\nx", "x"},
                                         TextCase{"emojiWithSelector", "❤\uFE0F\nx", "❤\uFE0F"},
                                         TextCase{"loneMark", "\u0301\nx", "\u0301"}),
                         [](auto const& given) { return given.param.name; });

TEST(HTMLAttributedTextUtilTests, aTextThatCannotBeRenderedIsPickedFromAsItIs) {
    Platform::CallingThreadMainExecutor main;
    Platform::GivenHTMLReader const failing(std::nullopt);
    EXPECT_EQ(HTMLAttributedTextUtil::parse("--\n- <b>Notes</b>\nmore", failing, main),
              AttributedString{"<b>Notes</b>"});
}

TEST(HTMLAttributedTextUtilTests, theReaderGetsTheWholeTextAndOnlyWhatLooksLikeHTML) {
    Platform::CallingThreadMainExecutor main;
    Platform::GivenHTMLReader const reader("x");
    HTMLAttributedTextUtil::parse("plain > text", reader, main);
    EXPECT_TRUE(reader.readings().empty());
    HTMLAttributedTextUtil::parse(" a < b ", reader, main);
    ASSERT_EQ(reader.readings().size(), 1U);
    EXPECT_EQ(reader.readings()[0].html, " a < b ");
}

TEST(HTMLAttributedTextUtilTests, theMainThreadRendersForItself) {
    Platform::QueuedMainLoop loop;
    Platform::MainLoopExecutor main(loop);
    Platform::GivenHTMLReader const reader("- x");
    // Nobody runs the loop, so that handing over would wait for ever.
    EXPECT_EQ(HTMLAttributedTextUtil::parse("<p>", reader, main), AttributedString{"x"});
    EXPECT_EQ(loop.runPending(), 0U);
}

TEST(HTMLAttributedTextUtilTests, anotherThreadHasTheMainThreadRender) {
    Platform::QueuedMainLoop loop;
    Platform::MainLoopExecutor main(loop);
    Platform::GivenHTMLReader const reader("- x");
    std::optional<AttributedString> line;
    std::jthread worker([&] { line = HTMLAttributedTextUtil::parse("<p>", reader, main); });
    while (loop.runPending() == 0)
        std::this_thread::yield();
    worker.join();
    EXPECT_EQ(line, AttributedString{"x"});
    ASSERT_EQ(reader.readings().size(), 1U);
    EXPECT_EQ(reader.readings()[0].thread, std::this_thread::get_id());
}

// A main loop that has ended.
class EndedMainLoop final : public Platform::MainLoop {
public:
    void invoke(std::move_only_function<void()> /*work*/) override {}
};

void parseBesideAnEndedLoop() {
    EndedMainLoop loop;
    Platform::MainLoopExecutor main(loop);
    Platform::GivenHTMLReader const reader("x");
    std::thread([&] { HTMLAttributedTextUtil::parse("<p>", reader, main); }).join();
}

TEST(HTMLAttributedTextUtilDeathTest, aLoopThatDropsTheRenderingEndsTheProcess) {
    EXPECT_DEATH(parseBesideAnEndedLoop(), "the main loop dropped work that another thread waits for");
}

// The square of a mebibyte takes longer than CTest gives a test.
TEST(HTMLAttributedTextUtilTests, hugeRulesTakeNoSquareOfTheirLength) {
    std::string marked;
    while (marked.size() < 1024UL * 1024)
        marked += "-\u0301";
    EXPECT_EQ(lineOfRendered(std::string(1024UL * 1024, '-') + "x"), "x");
    EXPECT_EQ(lineOfRendered(marked + "x"), "x");
    // All of it is one character.
    std::string pile = "-";
    while (pile.size() < 1024UL * 1024)
        pile += "\u0301";
    EXPECT_EQ(lineOfRendered(pile + "x"), "x");
}

} // namespace

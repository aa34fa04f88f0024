#include "Foundation/Text.h"

#include "Tests/Foundation/HostileLocale.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace Foundation;

TEST(UTF8Tests, wellFormedTextsAreValid) {
    for (std::string_view const text :
         {std::string_view(), std::string_view("\0", 1), std::string_view("plain"),
          std::string_view("Cumpleaños"), std::string_view("\U0010FFFF"), std::string_view("\uFEFFx"),
          std::string_view("12345678é12345678😀")})
        EXPECT_TRUE(Text::isValidUTF8(text)) << text;
}

TEST(UTF8Tests, illFormedBytesAreRefusedWhereverTheyStand) {
    struct Row {
        std::string_view name;
        std::string_view bytes;
    };
    for (auto const& row : {Row{"overlong slash", "\xC0\xAF"},
                            {"overlong of three", "\xE0\x80\xAF"},
                            {"surrogate", "\xED\xA0\x80"},
                            {"above the last scalar", "\xF4\x90\x80\x80"},
                            {"stray continuation", "\x80"},
                            {"truncated at the end", "\xE2\x82"},
                            {"truncated before ASCII", "\xE2\x82z"},
                            {"never used byte", "\xFF"}}) {
        SCOPED_TRACE(row.name);
        EXPECT_FALSE(Text::isValidUTF8(row.bytes));
        EXPECT_FALSE(Text::isValidUTF8("0123456789abcdef" + std::string(row.bytes)));
        EXPECT_FALSE(Text::isValidUTF8(std::string(row.bytes) + "0123456789abcdef"));
    }
}

TEST(UTF8Tests, sanitizingReplacesEachIllFormedSubsequenceOnce) {
    EXPECT_EQ(Text::sanitizedUTF8("good"), "good");
    EXPECT_EQ(Text::sanitizedUTF8("a\xE2\x82z"), "a\uFFFDz");
    EXPECT_EQ(Text::sanitizedUTF8("\xC0\xAF"), "\uFFFD\uFFFD");
    EXPECT_EQ(Text::sanitizedUTF8("caf\xE9"), "caf\uFFFD");
}

TEST(UTF8Tests, sourceTextsAreComposed) {
    EXPECT_EQ(std::string_view("Cumpleaños").size(), 11U);
}

TEST(CharacterSetTests, whitespacesAreTrimmedAndLineBreaksAreNot) {
    for (auto const* blank : {"\t", " ", "\u00A0", "\u1680", "\u2000", "\u2005", "\u200A", "\u200B", "\u202F",
                              "\u205F", "\u3000"})
        EXPECT_EQ(Text::trimmingWhitespaces(std::string(blank) + "x" + blank), "x");
    for (auto const* other :
         {"\n", "\v", "\f", "\r", "\u0085", "\u2028", "\u2029", "\uFEFF", "\u180E", "\u2060", "\u200C"})
        EXPECT_EQ(Text::trimmingWhitespaces(std::string(other) + "x"), std::string(other) + "x");
}

TEST(CharacterSetTests, whitespacesAndNewlinesTrimBoth) {
    EXPECT_EQ(Text::trimmingWhitespacesAndNewlines(" \n\u2028\u200Ba b\r\n\t\v\f\u0085\u2029 "), "a b");
    EXPECT_EQ(Text::trimmingWhitespacesAndNewlines("\u200B"), "");
    EXPECT_EQ(Text::trimmingWhitespacesAndNewlines(""), "");
    EXPECT_EQ(Text::trimmingWhitespacesAndNewlines("\uFEFF"), "\uFEFF");
}

TEST(CharacterSetTests, trimmingWorksOnScalarsNotOnClusters) {
    // A blank with a combining mark is one cluster, of which the blank alone goes.
    EXPECT_EQ(Text::trimmingWhitespaces(" \u0301x"), "\u0301x");
}

TEST(CharacterSetTests, everyNewlineEndsAPiece) {
    using Pieces = std::vector<std::string>;
    EXPECT_EQ(Text::componentsSeparatedByNewlines("a\nb\vc\fd\re\u0085f\u2028g\u2029h"),
              (Pieces{"a", "b", "c", "d", "e", "f", "g", "h"}));
    EXPECT_EQ(Text::componentsSeparatedByNewlines("a\r\nb"), (Pieces{"a", "", "b"}));
    EXPECT_EQ(Text::componentsSeparatedByNewlines(""), (Pieces{""}));
    EXPECT_EQ(Text::componentsSeparatedByNewlines("a\n"), (Pieces{"a", ""}));
}

TEST(CharacterSetTests, lettersMarksAndNumbersAreAlphanumeric) {
    for (auto const* text : {"½", "Ⅷ", "漢", "\u0301", "👍\uFE0F", "a", "7", "ñ"})
        EXPECT_TRUE(Text::containsAlphanumeric(text)) << text;
    for (auto const* text : {"👍", "•", "!", "", " ", "–", "_", "€"})
        EXPECT_FALSE(Text::containsAlphanumeric(text)) << text;
    EXPECT_FALSE(Text::isAlphanumeric(0x110000));
}

TEST(CapitalizationTests, eachWordsFirstCasedLetterIsTitleCased) {
    useHostileLocale();
    struct Row {
        std::string_view text;
        std::string_view expected;
    };
    for (auto const& row : {Row{"miércoles", "Miércoles"},
                            {"MONDAY", "Monday"},
                            {"thứ hai", "Thứ Hai"},
                            {"segunda-feira", "Segunda-Feira"},
                            {"понедельник", "Понедельник"},
                            {"l'uni", "L'uni"},
                            {"", ""},
                            {"2nd day", "2Nd Day"},
                            {"ßa", "Ssa"},
                            {"ǆa", "ǅa"},
                            {"ორშაბათი", "ორშაბათი"},
                            {"éjfél", "Éjfél"},
                            {"indi", "Indi"},
                            {"ISTANBUL", "Istanbul"}}) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(Text::capitalized(row.text), row.expected);
    }
}

TEST(LowercasedTests, aTextIsLoweredTheSameInEveryLocale) {
    useHostileLocale();
    EXPECT_EQ(Text::lowercased("SÍ"), "sí");
    EXPECT_EQ(Text::lowercased("I"), "i");
    EXPECT_EQ(Text::lowercased(""), "");
    EXPECT_EQ(Text::lowercased("ya"), "ya");
}

TEST(GraphemeTests, theFirstClusterIsMeasuredWhole) {
    struct Row {
        std::string_view name;
        std::string_view text;
        std::size_t expected;
    };
    for (auto const& row : {Row{"empty", "", 0},
                            {"ASCII", "ab", 1},
                            {"combining mark", "-\u0301x", 3},
                            {"keycap", "#\uFE0F\u20E3 Title", 7},
                            {"CR LF", "\r\nx", 2},
                            {"flag", "🇪🇸🇫🇷", 8},
                            {"family", "👨‍👩‍👧x", 18}}) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(Text::firstGraphemeLength(row.text), row.expected);
    }
}

TEST(GraphemeTests, whatExtendsAClusterIsWhatTheClusterHasMore) {
    for (std::string_view const base : {"-", "_", "=", "~", "*", "#", "•", "·", ".", "—", "–", "|"}) {
        for (std::string_view const after :
             {"", "x", "-", "\u0301x", "\u0301\u0302\u0303-", "\uFE0F\u20E3 x", "\u200Dx", "\u200D\U0001F469",
              "\u0903x", "\u0E33x", "\U0001F3FDx", "\u200Bx", "\u0600x", "\n", "\r\n", "\u1100",
              "\U0001F1EA"}) {
            SCOPED_TRACE(std::string(base) + std::string(after));
            EXPECT_EQ(base.size() + Text::clusterExtensionLength(after),
                      Text::firstGraphemeLength(std::string(base) + std::string(after)));
        }
    }
    EXPECT_EQ(Text::clusterExtensionLength("\u0301\xFF"), 2U);
}

TEST(GraphemeTests, truncationCutsBetweenClusters) {
    EXPECT_EQ(Text::truncated("abc", 3), "abc");
    EXPECT_EQ(Text::truncated("abcd", 3), "abc…");
    EXPECT_EQ(Text::truncated("e\u0301e\u0301", 2), "e\u0301e\u0301");
    EXPECT_EQ(Text::truncated("e\u0301e\u0301e\u0301", 2), "e\u0301e\u0301…");
    EXPECT_EQ(Text::truncated("👨‍👩‍👧👨‍👩‍👧", 1), "👨‍👩‍👧…");
    EXPECT_EQ(Text::truncated("", 0), "");
    EXPECT_EQ(Text::truncated("a", 0), "…");
}

TEST(GraphemeTests, terminalColumnsFollowTheClusters) {
    EXPECT_EQ(Text::terminalWidth("abc"), 3U);
    EXPECT_EQ(Text::terminalWidth("e\u0301"), 1U);
    EXPECT_EQ(Text::terminalWidth("漢字"), 4U);
    EXPECT_EQ(Text::terminalWidth("👨‍👩‍👧"), 2U);
    EXPECT_EQ(Text::terminalWidth("🇪🇸"), 2U);
    EXPECT_EQ(Text::terminalWidth("#\uFE0F\u20E3"), 2U);
    EXPECT_EQ(Text::terminalWidth("\u200B"), 0U);
    EXPECT_EQ(Text::terminalWidth(""), 0U);
}

TEST(NeutralizationTests, foreignTextsCannotSteerATerminal) {
    EXPECT_EQ(Text::neutralized("a\x1B[31mb"), "a\uFFFD[31mb");
    EXPECT_EQ(Text::neutralized("a\nb\tc\r\u2028d"), "a b c  d");
    EXPECT_EQ(Text::neutralized("a\u202Eb\u2066c"), "a\uFFFDb\uFFFDc");
    EXPECT_EQ(Text::neutralized("\x7F\u009B"), "\uFFFD\uFFFD");
    EXPECT_EQ(Text::neutralized("\xFF"), "\uFFFD");
    // Noncharacters are valid UTF-8, yet a PDF's text cannot hold them.
    EXPECT_EQ(Text::neutralized("a\uFFFEb\uFFFFc"), "a\uFFFDb\uFFFDc");
    EXPECT_EQ(Text::neutralized("\U0001FFFE\U0010FFFF"), "\uFFFD\uFFFD");
    EXPECT_EQ(Text::neutralized("\uFDD0\uFDEF"), "\uFFFD\uFFFD");
    EXPECT_EQ(Text::neutralized("\uFDCF\uFDF0\uFFFC"), "\uFDCF\uFDF0\uFFFC");
    EXPECT_EQ(Text::neutralized("Reunión 👨‍👩‍👧"), "Reunión 👨‍👩‍👧");
}

TEST(NeutralizationTests, everyEmbeddingOverrideAndIsolateIsReplaced) {
    for (auto const* control :
         {"\u202A", "\u202B", "\u202C", "\u202D", "\u202E", "\u2066", "\u2067", "\u2068", "\u2069"}) {
        EXPECT_EQ(Text::neutralized(std::string("a") + control + "b"), "a\uFFFDb");
        EXPECT_EQ(Text::neutralized(std::string("\u200Fא") + control + "b"), "\u200Fא\uFFFDb");
    }
}

TEST(NeutralizationTests, directionMarksStayWhereTheyOrderLettersAndGoFromAnyOtherText) {
    for (std::string const text : {"\u200Fפגישה: C++\u200E", "موعد\u061C 10-12", "Zoom עם אבי\u200E 10:00"})
        EXPECT_EQ(Text::neutralized(text), text);
    EXPECT_EQ(Text::neutralized("Pay \u200F100 / 200\u061C!\u200E"), "Pay 100 / 200!");
    EXPECT_EQ(Text::neutralized("\u200F\u200E\u061C"), "");
}

TEST(NeutralizationTests, softHyphensAreGone) {
    EXPECT_EQ(Text::neutralized("Be\u00ADspre\u00ADchung"), "Besprechung");
    EXPECT_EQ(Text::neutralized("\u00AD"), "");
}

TEST(DirectionTests, theFirstStrongCharacterDecides) {
    EXPECT_TRUE(Text::startsRightToLeft("שלום"));
    EXPECT_TRUE(Text::startsRightToLeft("12: مرحبا hello"));
    EXPECT_FALSE(Text::startsRightToLeft("hello שלום"));
    EXPECT_FALSE(Text::startsRightToLeft("123"));
    EXPECT_FALSE(Text::startsRightToLeft(""));
    EXPECT_FALSE(Text::startsRightToLeft("\u2067שלום\u2069 hello"));
}

} // namespace

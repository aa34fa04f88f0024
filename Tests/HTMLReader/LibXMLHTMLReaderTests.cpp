#include "Platform/HTMLReader/LibXMLHTMLReader.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

using Platform::LibXMLHTMLReader;

namespace {

struct ReadingCase {
    std::string name;
    std::string html;
    std::string text;
};

class LibXMLHTMLReaderReads : public testing::TestWithParam<ReadingCase> {};

TEST_P(LibXMLHTMLReaderReads, visibleText) {
    EXPECT_EQ(LibXMLHTMLReader().plainText(GetParam().html), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, LibXMLHTMLReaderReads,
    testing::Values(ReadingCase{"plainText", "Hello", "Hello"}, ReadingCase{"nothing", "", ""},
                    ReadingCase{"paragraphs", "<p>One</p><p>Two</p>", "One\nTwo"},
                    ReadingCase{"paragraphsLeftOpen", "<p>One<p>Two", "One\nTwo"},
                    ReadingCase{"textBesideBlocks", "a<div>b</div>c", "a\nb\nc"},
                    ReadingCase{"nestedBlocksBreakOnce",
                                "<div><div><p>a</p></div></div><section><p>b</p></section>", "a\nb"},
                    ReadingCase{"headings", "<h1>a</h1>b<h6>c</h6>", "a\nb\nc"},
                    ReadingCase{"emptyBlocksShowNothing", "<p>a</p><p> </p>\n\n<div></div><p>b</p>", "a\nb"},
                    ReadingCase{"strayParagraphEnd", "a</p>b", "a\nb"},
                    ReadingCase{"lineBreak", "a<br>b<br/>c</br>d", "a\nb\nc\nd"},
                    ReadingCase{"twoLineBreaks", "a<br><br>b", "a\n\nb"},
                    ReadingCase{"lineBreakBeforeABlock", "a<br><p>b</p>", "a\nb"},
                    ReadingCase{"rule", "a<hr>b", "a\nb"},
                    ReadingCase{"upperCase", "<P>a</P><DIV>b</DIV>", "a\nb"},
                    ReadingCase{"inlineElementsStayInLine", "a<b>b</b><i>c</i> <a href='x'>d</a>", "abc d"},
                    ReadingCase{"crossingTags", "<b>a<i>b</b>c</i>", "abc"},
                    ReadingCase{"unknownElements", "a<o:p>b</o:p><x-y>c</x-y>", "abc"},
                    ReadingCase{"options", "<select><option>a<option>b</select>c", "a\nb\nc"}),
    [](auto const& given) { return given.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Blanks, LibXMLHTMLReaderReads,
    testing::Values(ReadingCase{"collapse", "a \t\r\n\f  b", "a b"},
                    ReadingCase{"acrossTags", "a <b> b</b>", "a b"},
                    ReadingCase{"goAtBlockEdges", "<p> a </p> <p> b </p>", "a\nb"},
                    ReadingCase{"goBeforeALineBreak", "a <br> b", "a\nb"},
                    ReadingCase{"noBreakSpacesStay", "a&nbsp; &nbsp;b", "a\u00A0 \u00A0b"},
                    ReadingCase{"standInPre", "<pre>  a\n\tb  </pre>", "  a\n\tb  "},
                    ReadingCase{"firstLineBreakOfPreGoes", "<pre>\na\n</pre>b", "a\nb"},
                    ReadingCase{"carriageReturnsInPre", "<pre>a\r\nb\rc</pre>", "a\nb\nc"},
                    ReadingCase{"collapseAgainBehindPre", "<pre>a  b</pre>c  d", "a  b\nc d"}),
    [](auto const& given) { return given.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Lists, LibXMLHTMLReaderReads,
    testing::Values(ReadingCase{"bullets", "<ul><li>a</li><li>b</li></ul>c", "• a\n• b\nc"},
                    ReadingCase{"numbers", "<ol><li>a<li>b</ol>", "1. a\n2. b"},
                    ReadingCase{"start", "<ol start=9><li>a<li>b</ol>", "9. a\n10. b"},
                    ReadingCase{"ownNumber", "<ol><li value=\"7\">a<li>b</ol>", "7. a\n8. b"},
                    ReadingCase{"largestNumber", "<ol start=2147483647><li>a<li>b</ol>",
                                "2147483647. a\n2147483648. b"},
                    ReadingCase{"nested", "<ol><li>a<ul><li>b</ul><li>c</ol>", "1. a\n• b\n2. c"},
                    ReadingCase{"noList", "<li>a", "• a"},
                    ReadingCase{"paragraphInside", "<ul><li><p>a</p><p>b</p></ul>", "• a\nb"},
                    ReadingCase{"emptyItem", "<ol><li><li>b</ol>", "2. b"},
                    ReadingCase{"definitions", "<dl><dt>a<dd>b<dt>c</dl>", "a\nb\nc"}),
    [](auto const& given) { return given.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Tables, LibXMLHTMLReaderReads,
    testing::Values(ReadingCase{"rowsAreLines",
                                "<table><tr><td>a</td><td>b</td></tr><tr><td>c</td></tr></table>d",
                                "a b\nc\nd"},
                    ReadingCase{"leftOpen", "<table><tr><th>a<td>b<tr><td>c</table>d", "a b\nc\nd"},
                    ReadingCase{"sections",
                                "<table><caption>t</caption><thead><tr><td>a<tbody><tr><td>b</table>",
                                "t\na\nb"},
                    ReadingCase{"nested", "<table><tr><td><table><tr><td>a</table><td>b</table>", "a\nb"},
                    ReadingCase{"emptyCells", "<table><tr><td></td><td>a</td><td></td></table>", "a"}),
    [](auto const& given) { return given.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Unseen, LibXMLHTMLReaderReads,
    testing::Values(
        ReadingCase{"head", "<html><head><title>t</title><meta charset=x>loose</head><body>a</body></html>",
                    "a"},
        ReadingCase{"headLeftOpen", "<head><link rel=x><body>a", "a"},
        ReadingCase{"titleWithoutHead", "<title>t <b></title>a", "a"},
        ReadingCase{"script", "a<script>if (a</b>\"<p>\") </scripts> x()</script >b", "ab"},
        ReadingCase{"style", "a<STYLE>p > b { }</style>b", "ab"},
        ReadingCase{"scriptLeftOpen", "a<script>b</p>", "a"},
        ReadingCase{"template", "a<template><p>b</p></template>c", "ac"},
        ReadingCase{"comment", "a<!-- <p>b</p> -- > -->c", "ac"},
        ReadingCase{"shortComments", "a<!-->b<!--->c<!-- x --!>d", "abcd"},
        ReadingCase{"commentLeftOpen", "a<!-- b", "a"},
        ReadingCase{"conditionalComment", "a<!--[if mso]><p>b</p><![endif]-->c<![if !mso]>d<![endif]>",
                    "acd"},
        ReadingCase{"declarations", "<!DOCTYPE html><?xml version='1.0'?>a<![CDATA[b]]>c", "ac"},
        ReadingCase{"picture", "a<img src=http://127.0.0.1:1/x alt=b>c", "ac"},
        ReadingCase{"drawing", "a<svg><title>t</title><text>b</text></svg>c<svg/>d", "acd"},
        ReadingCase{"frame", "a<iframe src=x>b</iframe>c<video>d</video>", "ac"},
        ReadingCase{"fields", "a<input value=b>c<wbr>d", "acd"},
        ReadingCase{"hiddenAttribute", "a<b hidden>b<i>c</i></b>d", "ad"},
        ReadingCase{"hiddenBlockBreaksNoLine", "a <div HIDDEN=''>b</div> c", "a c"},
        ReadingCase{"hiddenStyle", "a<span style='color:red; Display : NONE !important;'>b</span>c", "ac"},
        ReadingCase{"lastDisplayCounts", "<p style='display:none;display:block'>a</p>", "a"},
        ReadingCase{"otherStyle", "<p style='display:inline; x-display:none'>a</p>", "a"},
        ReadingCase{"breaksInsideHidden", "a<b hidden>b<br>c<hr><img></b>d", "ad"},
        ReadingCase{"paragraphHiddenAndLeftOpen", "<p hidden>a<p>b", "b"},
        ReadingCase{"hiddenParagraphInBold", "<b hidden><p>a</p></b>b", "b"},
        ReadingCase{"tagLeftOpen", "a<p class='b'", "a"},
        ReadingCase{"quoteLeftOpen", "a<p class='b>c</p>d", "a"}, ReadingCase{"endTagLeftOpen", "a</p", "a"},
        ReadingCase{"namelessEndTag", "a</>b</ x>c", "abc"}),
    [](auto const& given) { return given.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Characters, LibXMLHTMLReaderReads,
    testing::Values(ReadingCase{"references", "&lt;b&gt; &amp;amp; &eacute;&#233;&#xE9; &quot;",
                                "<b> &amp; ééé \""},
                    ReadingCase{"referencesMakeNoTags", "&lt;p>a&lt;/p>", "<p>a</p>"},
                    ReadingCase{"ordinaryMarkupCharacters", "1 < 2 & 3 > 2 <3 a<", "1 < 2 & 3 > 2 <3 a<"},
                    ReadingCase{"beyondTheBasicPlane", "😀<b>&#128512;</b>", "😀😀"},
                    ReadingCase{"lettersOfAllSizes", "ñ漢é", "ñ漢é"},
                    ReadingCase{"lettersFromF", "ﬁ＜￡ﷺ", "ﬁ＜￡ﷺ"},
                    ReadingCase{"byteOrderMark", "\uFEFFa", "a"},
                    ReadingCase{"controlCharacters",
                                std::string("a\0b\x01"
                                            "c&#7;d\x7F&#127;",
                                            17),
                                "abcd"},
                    ReadingCase{"noncharacters", "a\uFDD0\uFDD1\uFFFE\uFFFF&#xFDD0;b", "ab"},
                    ReadingCase{"otherCharsetIsDisregarded", "<meta charset=iso-8859-1>ñ", "ñ"},
                    ReadingCase{"greaterThanInAttribute", "<a title='a>b' href=\"c>d\">e</a>", "e"}),
    [](auto const& given) { return given.param.name; });

TEST(LibXMLHTMLReaderTests, bytesThatAreNotUTF8AreRefused) {
    for (auto const* html : {"<p>\xFF</p>", "<p>\xC3", "\xED\xA0\x80<p>",
                             "\xC0\xBC"
                             "b>"})
        EXPECT_EQ(LibXMLHTMLReader().plainText(html), std::nullopt);
}

TEST(LibXMLHTMLReaderTests, anEntityDeclarationIsNotFollowed) {
    auto const* const html = "<!DOCTYPE p [<!ENTITY x SYSTEM \"file:///etc/passwd\">]><p>a&x;b</p>";
    EXPECT_EQ(LibXMLHTMLReader().plainText(html), "]>\na&x;b");
}

} // namespace

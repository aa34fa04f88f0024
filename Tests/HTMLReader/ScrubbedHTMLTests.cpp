#include "Platform/HTMLReader/ScrubbedHTML.h"

#include <gtest/gtest.h>

using Platform::scrubbedHTML;

TEST(ScrubbedHTMLTests, leavesNothingButElementsOfItsOwnAndText) {
    EXPECT_EQ(scrubbedHTML("<article class=x><h2 id='a'>One</h2><!-- - --></article>"),
              "<html><body><div><div>One</div></div>");
}

TEST(ScrubbedHTMLTests, keepsTheAttributesThatShowInTheText) {
    EXPECT_EQ(scrubbedHTML("<ol start=3 type=a><li value='5'>a<p style='display:none' value=4>b"),
              "<html><body><ol value=3><li value=5>a<p hidden>b");
}

TEST(ScrubbedHTMLTests, dropsElementsThatOnlyChangeLooks) {
    EXPECT_EQ(scrubbedHTML("<b>a</b><font size=2>c</u>"), "<html><body>ac");
}

TEST(ScrubbedHTMLTests, keepsThemWhereSomethingIsHidden) {
    EXPECT_EQ(scrubbedHTML("<i>a<b hidden>b<u>c</u></b>d</i>"),
              "<html><body>a<span hidden>b<span>c</span></span>d");
}

TEST(ScrubbedHTMLTests, dropsEndTagsThatEndNothing) {
    EXPECT_EQ(scrubbedHTML("</div>a</td><div>b</div></div></hr></img>"), "<html><body>a<div>b</div>");
}

TEST(ScrubbedHTMLTests, writesReferencesAsCharacters) {
    EXPECT_EQ(scrubbedHTML("&eacute; < &lt;&amp;"), "<html><body>é \uFDD0 \uFDD0\uFDD1");
}

#include "Tests/Meetings/MeetFixtures.h"

#include "Applications/Widget/MeetPage.h"
#include "Foundation/DateFormatting.h"
#include "Platform/HTMLReader/LibXMLHTMLReader.h"
#include "Platform/WidgetHost/CallingThreadMainExecutor.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Meetings::MeetEntity;
using Platform::DetailPage;
using Texts = std::vector<std::string>;

MeetEntity review() {
    auto meet = Meetings::someMeet("Design review");
    meet.metDate = Foundation::dateFromISO8601("2026-03-11T09:00:00Z").value();
    meet.metDuration = 3600;
    meet.metIsAllDay = false;
    meet.metLocation = "Room 4";
    meet.metDescription = "";
    meet.metUrl = std::nullopt;
    meet.metCalendarName = "Work";
    return meet;
}

DetailPage pageOf(MeetEntity const& meet) {
    Platform::CallingThreadMainExecutor main;
    return Widget::meetPage(meet, Meetings::calendarIn("Europe/Berlin"), {.identifier = "en"},
                            Platform::LibXMLHTMLReader(), main);
}

Texts targets(DetailPage const& page) {
    Texts found;
    for (auto const& link : page.links) {
        found.push_back(link.target.absoluteString);
    }
    return found;
}

TEST(MeetPageTests, tellsTitleDayTimesPlaceCalendarAndWhatItIsAbout) {
    auto meet = review();
    meet.metDescription = "<p>---</p><p>Bring the <b>numbers</b></p><p>and cake</p>";
    EXPECT_EQ(pageOf(meet), (DetailPage{.title = "Design review",
                                        .lines = {"Wednesday 2026-03-11, 10:00 a.m. – 11:00 a.m.", "Room 4",
                                                  "Calendar: Work", "Bring the numbers"},
                                        .links = {}}));
}

TEST(MeetPageTests, whatAMeetDoesNotHaveHasNoLine) {
    auto meet = review();
    meet.metName = " ";
    meet.metLocation = std::nullopt;
    meet.metIsAllDay = true;
    meet.metDate = Foundation::dateFromISO8601("2026-03-10T23:00:00Z").value();
    meet.metDuration = 3 * 86400.0;
    EXPECT_EQ(pageOf(meet),
              (DetailPage{.title = "Work",
                          .lines = {"Wednesday 2026-03-11 – Friday 2026-03-13, all day", "Calendar: Work"},
                          .links = {}}));
    meet.metCalendarName = "";
    EXPECT_EQ(pageOf(meet).lines, Texts{"Wednesday 2026-03-11 – Friday 2026-03-13, all day"});
}

TEST(MeetPageTests, linksComeFromLinkPlaceAndDescriptionEachOnce) {
    auto meet = review();
    meet.metUrl = Foundation::URL{.absoluteString = "https://example.com/j/1"};
    meet.metLocation = "Room 4 or https://calls.example.org/2, by phone";
    meet.metDescription = "Join https://example.com/j/1 or http://example.net.";
    auto const page = pageOf(meet);
    EXPECT_EQ(targets(page),
              (Texts{"https://example.com/j/1", "https://calls.example.org/2", "http://example.net"}));
    EXPECT_EQ(page.links.front().title, "Open example.com");
}

TEST(MeetPageTests, onlyWebLinksOfWhatIsSeenAreOffered) {
    auto meet = review();
    meet.metLocation = std::nullopt;
    for (char const* const link :
         {"file:///etc/passwd", "javascript:alert(1)", "ssh://host", "https://", "x"}) {
        meet.metUrl = Foundation::URL{.absoluteString = link};
        EXPECT_TRUE(pageOf(meet).links.empty()) << link;
    }
    meet.metUrl = std::nullopt;
    meet.metDescription = "<p>See https://example.com/a <img src=\"https://tracker.example/p.png\"></p>"
                          "<!-- https://hidden.example --><script>'https://script.example'</script>";
    EXPECT_EQ(targets(pageOf(meet)), Texts{"https://example.com/a"});
}

TEST(MeetPageTests, aButtonNamesTheHostThatItReallyLeadsTo) {
    auto meet = review();
    meet.metUrl = Foundation::URL{.absoluteString = "https://bank.example@evil.example/bank.example"};
    EXPECT_EQ(pageOf(meet).links.front().title, "Open evil.example");
}

TEST(MeetPageTests, foreignTextsAreHarmlessAndBounded) {
    auto meet = review();
    meet.metName = "Pay\u202Ekcab\n<b>now</b>\x1B[2J";
    meet.metLocation = std::string(10'000, 'y');
    meet.metCalendarName = "Wo\nrk\u202E";
    meet.metDescription = "Call &#x202E;me\x07";
    for (int link = 0; link < 1000; ++link) {
        meet.metDescription += " https://example.com/" + std::to_string(link);
    }
    auto const page = pageOf(meet);
    EXPECT_EQ(page.title, "Pay\uFFFDkcab <b>now</b>\uFFFD[2J");
    EXPECT_EQ(page.lines[1], std::string(500, 'y') + "…");
    EXPECT_EQ(page.lines[2], "Calendar: Wo rk\uFFFD");
    EXPECT_LE(page.lines[3].size(), 210U);
    EXPECT_EQ(page.lines[3].find('\x07'), std::string::npos);
    EXPECT_EQ(page.links.size(), 4U);

    meet.metName = std::string(10'000, 'x');
    EXPECT_EQ(pageOf(meet).title, std::string(500, 'x') + "…");
}

} // namespace

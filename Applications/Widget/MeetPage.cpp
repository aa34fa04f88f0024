#include "Applications/Widget/MeetPage.h"

#include "Applications/Composition/TimeWords.h"
#include "Applications/Widget/HarmlessText.h"
#include "Applications/Widget/Texts.h"
#include "Foundation/Text.h"
#include "Foundation/WebLinks.h"
#include "WidgetExtension/MeetSummary.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Widget {

namespace {

using Foundation::URL;
using Meetings::MeetEntity;

constexpr std::size_t mostLinks = 4;
// Bytes of a text in which links are looked for.
constexpr std::size_t longestSearched = 64 * 1024;

bool isBlank(std::string_view text) {
    return Foundation::Text::trimmingWhitespacesAndNewlines(text).empty();
}

// What a person would see of it. The targets behind an HTML description's words are not among that.
std::string visibleDescription(MeetEntity const& meet, Platform::HTMLReader const& reader) {
    auto const& description = meet.metDescription;
    if (!description.contains('<')) {
        return description;
    }
    return reader.plainText(description).value_or("");
}

std::vector<URL> linksOf(MeetEntity const& meet, Platform::HTMLReader const& reader) {
    std::vector<URL> links;
    auto const take = [&links](URL const& link) {
        if (links.size() < mostLinks && std::ranges::find(links, link) == links.end()) {
            links.push_back(link);
        }
    };
    if (meet.metUrl && Foundation::isWebLink(*meet.metUrl)) {
        take(*meet.metUrl);
    }
    auto const place = meet.metLocation.value_or("");
    auto const description = visibleDescription(meet, reader);
    for (auto const text : {std::string_view(place), std::string_view(description)}) {
        std::ranges::for_each(Foundation::webLinksIn(text.substr(0, longestSearched)), take);
    }
    return links;
}

std::string calendarLine(MeetEntity const& meet) {
    auto const name = harmless(meet.metCalendarName);
    return isBlank(name) ? "" : Texts::ofCalendar(name);
}

// The host alone says where a link leads; what stands before it can be made to look like another's.
Platform::DetailPage::Link button(URL const& link) {
    auto const place = Foundation::URLPlace::of(link);
    return {.title = Texts::openLink(harmless(place ? place->host : link.absoluteString)), .target = link};
}

} // namespace

Platform::DetailPage meetPage(MeetEntity const& meet, Foundation::Calendar const& calendar,
                              Foundation::Locale const& locale, Platform::HTMLReader const& reader,
                              Platform::MainExecutor& mainExecutor) {
    auto const summary = WidgetExtension::meetSummary(meet, calendar, reader, mainExecutor);
    auto const end = meet.metDate.addingTimeInterval(meet.metDuration);
    auto const when = Composition::TimeWords(calendar, locale).when(meet.metDate, end, meet.metIsAllDay);

    Platform::DetailPage page{
        .title = harmless(isBlank(summary.title) ? meet.metCalendarName : summary.title),
        .lines = {when, harmless(summary.place), calendarLine(meet), harmless(summary.description)},
        .links = {},
    };
    std::erase_if(page.lines, isBlank);
    for (auto const& link : linksOf(meet, reader)) {
        page.links.push_back(button(link));
    }
    return page;
}

} // namespace Widget

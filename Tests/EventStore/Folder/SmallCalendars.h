#pragma once

#include <fmt/format.h>

#include <string>
#include <string_view>
#include <vector>

/// A VEVENT of one hour.
inline std::string smallEvent(std::string_view uid, std::string_view title,
                              std::string_view start = "20260311T090000Z") {
    return fmt::format("BEGIN:VEVENT\r\nUID:{}\r\nDTSTAMP:20260101T000000Z\r\nDTSTART:{}\r\nDURATION:PT1H\r\n"
                       "SUMMARY:{}\r\nEND:VEVENT\r\n",
                       uid, start, title);
}

/// A file of those events; `properties` stand before them, each with its line break.
inline std::string smallFile(std::vector<std::string> const& events, std::string_view properties = "") {
    std::string text = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Tests//EN\r\n";
    text += properties;
    for (auto const& event : events)
        text += event;
    return text + "END:VCALENDAR\r\n";
}

#include "Platform/EventStore/ICalendar/CalendarFile.h"

#include "Platform/EventStore/ICalendar/ContentLine.h"
#include "Platform/EventStore/ICalendar/EventBuilder.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace Platform::ICalendar {
namespace {

// Old programs end lines by a bare CR, some in part of a file only. Makes those LFs, which moves no byte.
void repairLineBreaks(std::string& bytes) {
    char* const end = bytes.data() + bytes.size();
    for (char* place = bytes.data(); place < end; ++place) {
        place = static_cast<char*>(std::memchr(place, '\r', static_cast<std::size_t>(end - place)));
        if (place == nullptr) return;
        bool const isBare = place + 1 == end || (place[1] != '\n' && place[1] != '\r');
        if (isBare) *place = '\n';
    }
}

class CalendarReader {
public:
    explicit CalendarReader(CalendarFile& file) : file(file), events(file), lines(*file.bytes) {}

    void readAll() {
        while (lines.next())
            readLine(lines.line());
        if (events.isOpen()) events.abandon();
        if (!hasBegun) reportForeign();
        if (!hasOwnName) file.name = std::move(plainName);
        if (!hasOwnColor) file.color = std::move(plainColor);
    }

private:
    enum class Place : std::uint8_t { outside, calendar, event, timeZone, ignored };

    void readLine(std::string_view line) {
        char const first = static_cast<char>(line.front() | 0x20);
        bool const mayDelimit = first == 'b' || first == 'e';
        if (mayDelimit && readDelimiter(line)) return;
        // No delimiter is so long; what is folded beyond belongs to a property.
        constexpr std::size_t longestDelimiter = 128;
        if (mayDelimit && lines.isFolded() && line.size() <= longestDelimiter) {
            if (readDelimiter(unfold(line))) return;
        }
        if (depth > 0) {
            return;
        } else if (place == Place::event) {
            events.property(line, lines.lineNumber(), lines.isFolded());
        } else if (place == Place::calendar && (first == 'x' || first == 'n' || first == 'c')) {
            readCalendarProperty(line);
        } else if (place == Place::timeZone && first == 't') {
            readZoneIdentifier(line);
        }
    }

    // False for any other line, and for one that is still folded.
    bool readDelimiter(std::string_view line) {
        if (line.find('\n') != std::string_view::npos) return false;
        if (isDelimiter(line, "BEGIN:")) {
            begin(trimmed(line.substr(6)));
        } else if (isDelimiter(line, "END:")) {
            end(trimmed(line.substr(4)));
        } else {
            return false;
        }
        return true;
    }

    // A page of the web in place of a download, say. An empty file is an empty calendar.
    void reportForeign() {
        std::string_view content = *file.bytes;
        if (content.starts_with("\xEF\xBB\xBF")) content.remove_prefix(3);
        if (trimmed(content).empty()) return;
        file.isForeign = true;
        bool const isWide = content.starts_with("\xFF\xFE") || content.starts_with("\xFE\xFF");
        file.problems.push_back({.path = file.path,
                                 .line = 1,
                                 .uid = std::nullopt,
                                 .effect = Problem::Effect::skipped,
                                 .reason = isWide ? "it is no iCalendar file: its text is UTF-16, not UTF-8"
                                                  : "it is no iCalendar file"});
    }

    static bool isDelimiter(std::string_view line, std::string_view delimiter) {
        return line.size() > delimiter.size() &&
               equalsIgnoringCase(line.substr(0, delimiter.size()), delimiter);
    }

    void begin(std::string_view name) {
        bool const isEvent = equalsIgnoringCase(name, "VEVENT");
        bool const isCalendar = equalsIgnoringCase(name, "VCALENDAR");
        if (isEvent || isCalendar) {
            hasBegun = true;
            // Neither stands inside an event: one that is still open lacks its END.
            if (events.isOpen()) events.finishWithoutEnd(lines.offset());
            depth = 0;
            place = isEvent ? Place::event : Place::calendar;
            if (isEvent) events.start(lines.lineNumber(), lines.offset());
        } else if (place == Place::outside || place == Place::calendar) {
            bool const isZone = equalsIgnoringCase(name, "VTIMEZONE");
            place = isZone ? Place::timeZone : Place::ignored;
            zoneStart = lines.offset();
            zoneLine = lines.lineNumber();
            zoneIdentifier.clear();
        } else {
            ++depth;
        }
    }

    void end(std::string_view name) {
        bool const isCalendar = equalsIgnoringCase(name, "VCALENDAR");
        if (isCalendar) {
            if (events.isOpen()) events.finishWithoutEnd(lines.offset());
            depth = 0;
            place = Place::outside;
        } else if (place == Place::event && equalsIgnoringCase(name, "VEVENT")) {
            // Ends the event even where a component inside it has lost its own END.
            events.finish(lines.endOffset());
            depth = 0;
            place = Place::calendar;
        } else if (place == Place::timeZone && equalsIgnoringCase(name, "VTIMEZONE")) {
            finishZone();
            depth = 0;
            place = Place::calendar;
        } else if (depth > 0) {
            --depth;
        } else if (place == Place::ignored) {
            place = Place::calendar;
        }
    }

    void readCalendarProperty(std::string_view line) {
        ContentLine content;
        if (!splitContentLine(line, content)) return;
        auto const value = [&content] { return PropertyValue(content.value).text(); };
        if (equalsIgnoringCase(content.name, "X-WR-CALNAME")) {
            if (!std::exchange(hasOwnName, true)) file.name = value();
        } else if (equalsIgnoringCase(content.name, "NAME")) {
            if (!plainName) plainName = value();
        } else if (equalsIgnoringCase(content.name, "X-APPLE-CALENDAR-COLOR")) {
            if (!std::exchange(hasOwnColor, true)) file.color = trimmed(value());
        } else if (equalsIgnoringCase(content.name, "COLOR")) {
            if (!plainColor) plainColor = trimmed(value());
        }
    }

    void readZoneIdentifier(std::string_view line) {
        ContentLine content;
        bool const isIdentifier = splitContentLine(line, content) && equalsIgnoringCase(content.name, "TZID");
        if (isIdentifier) zoneIdentifier = trimmed(PropertyValue(content.value).text());
    }

    void finishZone() {
        if (zoneIdentifier.empty()) return;
        auto const bytes = std::string_view(*file.bytes).substr(zoneStart, lines.endOffset() - zoneStart);
        file.timeZones.push_back({.identifier = zoneIdentifier, .bytes = bytes, .line = zoneLine});
    }

    CalendarFile& file;
    EventBuilder events;
    ContentLineScanner lines;
    Place place = Place::outside;
    std::size_t depth = 0; // Of components inside the one that `place` names.
    std::size_t zoneStart = 0;
    std::int64_t zoneLine = 0;
    std::string zoneIdentifier;
    bool hasBegun = false; // A calendar, or an event without one.
    bool hasOwnName = false;
    bool hasOwnColor = false;
    std::optional<std::string> plainName;
    std::optional<std::string> plainColor;
};

} // namespace

std::shared_ptr<CalendarFile const> read(std::string bytes, std::string path) {
    repairLineBreaks(bytes);
    auto file = std::make_shared<CalendarFile>();
    file->path = std::move(path);
    file->bytes = std::make_shared<std::string const>(std::move(bytes));
    CalendarReader(*file).readAll();
    file->events.shrink_to_fit();
    return file;
}

std::shared_ptr<CalendarFile const> readExcerpt(std::vector<ExcerptPart> const& parts, std::string_view bytes,
                                                std::string path) {
    std::string text = "BEGIN:VCALENDAR\n";
    std::vector<std::size_t> places; // Where in the text each part begins.
    places.reserve(parts.size());
    text.reserve(text.size() + bytes.size() + parts.size());
    for (auto const& part : parts) {
        places.push_back(text.size());
        text += bytes.substr(0, part.length);
        bytes.remove_prefix(part.length);
        // The file's last line may lack its break.
        if (text.back() != '\n' && text.back() != '\r') text += '\n';
    }
    // What lacks its END is not at the end of the file, or it would not have been found there.
    text += "END:VCALENDAR\n";
    repairLineBreaks(text);
    auto file = std::make_shared<CalendarFile>();
    file->path = std::move(path);
    file->bytes = std::make_shared<std::string const>(std::move(text));
    CalendarReader(*file).readAll();
    for (auto& event : file->events) {
        auto const index = std::ranges::upper_bound(places, event.offset) - places.begin() - 1;
        auto const& part = parts[static_cast<std::size_t>(index)];
        event.offset = part.offset;
        event.line = part.line;
    }
    file->problems.clear();
    return file;
}

} // namespace Platform::ICalendar

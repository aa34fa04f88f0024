#pragma once

#include "Platform/EventStore/ICalendar/CalendarFile.h"
#include "Platform/EventStore/ICalendar/ContentLine.h"
#include "Platform/EventStore/ICalendar/ValueParser.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Platform::ICalendar {

/// Gathers the properties of one VEVENT after another and adds each to a file, or the problem why not.
class EventBuilder {
public:
    explicit EventBuilder(CalendarFile& file);

    [[nodiscard]] bool isOpen() const { return isStarted; }

    /// At BEGIN:VEVENT.
    void start(std::int64_t line, std::size_t offset);

    /// A property of the event itself, not of a component inside it.
    void property(std::string_view line, std::int64_t lineNumber, bool isFolded);

    /// At END:VEVENT, whose line ends before `endOffset`.
    void finish(std::size_t endOffset);

    /// Where the next component begins before this event has ended: what was read of it counts.
    void finishWithoutEnd(std::size_t endOffset);

    /// At the end of the file: what is missing of the event is unknown, so it is not shown.
    void abandon();

private:
    void readProperty(ContentLine const& content, std::int64_t lineNumber, bool isFolded);
    void readTimes(ContentLine const& content, bool isFolded);
    void readRule(ContentLine const& content, bool isFolded);
    TimeParameters timeParameters(std::string_view parameters, bool isFolded);
    std::uint32_t zoneIndex(std::string_view identifier);
    void settleEnd();
    void fail(std::string reason);
    void leaveOut(std::string reason);
    void adjust(std::string reason);
    void report(std::int64_t line, Problem::Effect effect, std::string reason);

    CalendarFile& file;
    std::unordered_map<std::string, std::uint32_t> zoneIndices;
    std::uint32_t lastZoneIndex = 0;

    bool isStarted = false;
    EventComponent event;
    std::optional<CalendarTime> startTime;
    std::optional<PropertyValue> uid;
    std::int64_t propertyLine = 0;
    bool hasRange = false;
    struct Failure {
        std::int64_t line;
        std::string reason;
    };
    std::optional<Failure> failure;
    std::vector<Failure> leftOut; // Told only of an event that is taken.
};

} // namespace Platform::ICalendar

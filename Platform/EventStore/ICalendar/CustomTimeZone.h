#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace Platform::ICalendar {

/// A clock that a VTIMEZONE describes (RFC 5545 §3.6.5). Its changes are worked out up to the year 2200; the
/// last of them stands from then on.
class CustomTimeZone {
public:
    /// Null when `bytes` describe no usable offset. Observances that cannot be read are left out. Takes the
    /// months and times that its rules looked at off `steps`; without steps left no rule is followed further.
    static std::shared_ptr<CustomTimeZone const> fromComponent(std::string_view bytes, std::int64_t& steps);

    /// Seconds east of UTC at an instant.
    [[nodiscard]] std::int32_t secondsFromUTC(std::int64_t utcSeconds) const;

    /// UTC seconds of a wall-clock time: the first pass of a repeated one, a skipped one moved forward by
    /// the gap.
    [[nodiscard]] std::int64_t instant(std::int64_t localSeconds) const;

private:
    struct Change {
        std::int64_t start; // UTC seconds
        std::int32_t before;
        std::int32_t offset;
    };

    struct Observance;
    explicit CustomTimeZone(std::vector<Change> changes);
    static void addChanges(Observance const& observance, std::int64_t& steps, std::vector<Change>& changes);

    std::vector<Change> changes; // By start; never empty.
};

} // namespace Platform::ICalendar

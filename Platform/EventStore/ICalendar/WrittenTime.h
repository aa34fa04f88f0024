#pragma once

#include "Platform/EventStore/ICalendar/CalendarTime.h"
#include "Platform/EventStore/ICalendar/ContentLineWriter.h"

#include <cstdint>
#include <string>

namespace Platform::ICalendar {

/// A DATE or DATE-TIME as it is to be written, with the name of its clock.
struct WrittenTime {
    TimeForm form;
    std::string zone; ///< Its TZID; empty unless `zoned`.
    std::int64_t localSeconds;

    /// ";VALUE=DATE", ";TZID=Europe/Madrid" or nothing.
    [[nodiscard]] std::string parameters() const {
        if (form == TimeForm::date) return ";VALUE=DATE";
        if (form == TimeForm::zoned) return ";TZID=" + parameterText(zone);
        return {};
    }

    [[nodiscard]] std::string value() const {
        return CalendarTime{.form = form, .zone = 0, .localSeconds = localSeconds}.text();
    }

    [[nodiscard]] bool isSameClock(WrittenTime const& other) const {
        return form == other.form && zone == other.zone;
    }

    friend bool operator==(WrittenTime const&, WrittenTime const&) = default;
};

} // namespace Platform::ICalendar

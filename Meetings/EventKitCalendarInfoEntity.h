#pragma once

#include <string>

namespace Meetings {

/// One calendar of an account, for a list of calendars.
struct EventKitCalendarInfoEntity {
    std::string eciId;
    std::string eciTitle;
    std::string eciColorHex; ///< "#" and six upper-case hexadecimal digits.

    [[nodiscard]] std::string const& id() const { return eciId; }

    bool operator==(EventKitCalendarInfoEntity const&) const = default;
};

} // namespace Meetings

#pragma once

#include "Platform/EventStore/EKCalendar.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Platform {

/// The kind of an account. A value outside the enumerators is allowed: a newer store may know more.
enum class EKSourceType : std::int64_t {
    local = 0,
    exchange = 1,
    calDAV = 2,
    mobileMe = 3,
    subscribed = 4,
    birthdays = 5,
};

/// One account of the store with its event calendars, in the store's order.
struct EKSource {
    std::string sourceIdentifier;
    std::string title;
    EKSourceType sourceType;
    std::vector<EKCalendar> calendars;

    bool operator==(EKSource const&) const = default;
};

} // namespace Platform

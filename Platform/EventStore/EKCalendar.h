#pragma once

#include "Platform/EventStore/CGColor.h"

#include <string>

namespace Platform {

/// One calendar of the store.
struct EKCalendar {
    std::string calendarIdentifier; ///< Stable across restarts.
    std::string title;
    CGColor cgColor;
    std::string sourceIdentifier;
    bool allowsContentModifications;

    bool operator==(EKCalendar const&) const = default;
};

} // namespace Platform

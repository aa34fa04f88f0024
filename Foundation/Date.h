#pragma once

#include <compare>

namespace Foundation {

/// An instant, held as seconds since 1970-01-01 00:00 UTC with a 64-bit float's precision.
struct Date {
    double secondsSince1970;

    /// The instant `seconds` later; earlier when negative.
    [[nodiscard]] constexpr Date addingTimeInterval(double seconds) const {
        return {.secondsSince1970 = secondsSince1970 + seconds};
    }

    /// Seconds from `other` to this instant.
    [[nodiscard]] constexpr double timeIntervalSince(Date other) const {
        return secondsSince1970 - other.secondsSince1970;
    }

    /// As IEEE 754 orders floats: a NaN instant is neither equal to, before, nor after any other.
    friend constexpr std::partial_ordering operator<=>(Date, Date) = default;
    friend constexpr bool operator==(Date, Date) = default;
};

} // namespace Foundation

#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace Foundation {

class Environment;

/// A time zone with the rules of the system's tzdata (RFC 8536), also past the last explicit transition.
/// A value: copies share the immutable rules and may be used from any thread.
class TimeZone {
public:
    /// The zone of an IANA name ("Europe/Madrid") or a POSIX rule text ("EST5EDT,M3.2.0,M11.1.0").
    /// Absent when the system does not know it.
    static std::optional<TimeZone> named(std::string_view identifier);

    /// Coordinated Universal Time; always there.
    static TimeZone utc();

    /// A zone of one constant offset east of UTC, less than 24 hours either way, called "UTC+05:30".
    static TimeZone fixedOffset(std::int32_t secondsEast);

    /// The user's zone: `TZ` when it is usable (a leading colon and an absolute path are understood), else
    /// the target of /etc/localtime, else UTC. An empty `TZ` is UTC. Works it out anew at each call.
    static TimeZone current(Environment const& environment,
                            std::filesystem::path const& systemZoneFile = "/etc/localtime");

    /// The name it was found by.
    [[nodiscard]] std::string const& identifier() const;

    /// Seconds east of UTC in force at `utcSeconds` since 1970-01-01 00:00 UTC.
    [[nodiscard]] std::int32_t secondsFromUTC(std::int64_t utcSeconds) const;

    /// What a wall-clock time means in this zone.
    struct LocalTimeResolution {
        enum class Kind : std::uint8_t { unique, repeated, skipped };
        Kind kind;
        std::int64_t first;  ///< UTC seconds; of a repeated time the first pass; of a skipped time the
                             ///< instant moved forward by the gap (read with the offset before it).
        std::int64_t second; ///< UTC seconds of the second pass of a repeated time; of a skipped time the
                             ///< first instant after the gap; otherwise as `first`.
    };

    /// Resolves a wall-clock time given as seconds from 1970-01-01 00:00 on this zone's clocks.
    [[nodiscard]] LocalTimeResolution resolveLocal(std::int64_t localSeconds) const;

    /// Zones are equal when they were found by the same name.
    friend bool operator==(TimeZone const& left, TimeZone const& right);

private:
    struct Rules;
    explicit TimeZone(std::shared_ptr<Rules const> rules);
    std::shared_ptr<Rules const> rules;
};

} // namespace Foundation

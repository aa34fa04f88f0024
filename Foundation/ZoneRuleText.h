#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Texts of POSIX time-zone rules ("CET-1CEST,M3.5.0,M10.5.0/3").
namespace Foundation::ZoneRuleText {

/// The same rule with its two halves exchanged, when its saving time is *behind* its standard time, as the
/// Irish one is written ("IST-1GMT0,M10.5.0,M3.5.0/1" → "GMT0IST-1,M3.5.0/1,M10.5.0"). Absent for every other
/// rule and for what is no rule.
std::optional<std::string> exchangingNegativeSaving(std::string_view rule);

/// The rule that closes a compiled zone file (RFC 8536, footer). Absent when it has none.
std::optional<std::string> ofZoneFile(std::string const& path);

} // namespace Foundation::ZoneRuleText

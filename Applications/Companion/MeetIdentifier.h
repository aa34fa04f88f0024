#pragma once

#include "Meetings/MeetEntity.h"

#include <optional>
#include <string>
#include <string_view>

namespace Companion {

/// Hexadecimal digits in upper case, hyphens left out; absent when there is anything else, or nothing.
std::optional<std::string> identifierDigits(std::string_view text);

/// Whether the digits of the meet's `metId` begin so.
bool isCalled(Meetings::MeetEntity const& meet, std::string const& digits);

} // namespace Companion

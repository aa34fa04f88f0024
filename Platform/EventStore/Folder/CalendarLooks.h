#pragma once

#include "Platform/EventStore/CGColor.h"

#include <filesystem>
#include <optional>
#include <string>

namespace Platform {

/// The content of a vdir's one-line file, which names or colours its calendar; absent when it cannot be read
/// or is blank.
std::optional<std::string> calendarMetadata(std::filesystem::path const& file);

/// The colour that a calendar's text names; one without components for none, and for a text that names none.
CGColor calendarColor(std::optional<std::string> const& text);

} // namespace Platform

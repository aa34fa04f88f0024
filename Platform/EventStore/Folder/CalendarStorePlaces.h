#pragma once

#include "Foundation/Environment.h"
#include "Platform/Files/FileManager.h"

#include <filesystem>
#include <optional>

namespace Platform {

/// Where the calendar store keeps what it knows. The folders need not exist yet.
struct CalendarStorePlaces {
    /// Holds calendar-store.json and calendar-access.json: $XDG_CONFIG_HOME/quillora when that variable is
    /// an absolute path, else $HOME/.config/quillora.
    std::filesystem::path configurationDirectory;
    /// The folder of the product's own calendar, in the data home.
    std::filesystem::path nativeCalendar;
    /// Holds the indexes of the calendars: quillora/calendars in $XDG_CACHE_HOME when that variable is an
    /// absolute path, else in $HOME/.cache. Nothing there is missed when it is gone. Absent without either.
    std::optional<std::filesystem::path> indexDirectory = std::nullopt;

    /// Absent when the environment names neither a configuration home nor a data home (a service without
    /// HOME, for example).
    static std::optional<CalendarStorePlaces> of(Foundation::Environment const& environment,
                                                 FileManager const& files);
};

} // namespace Platform

#pragma once

#include "Foundation/Calendar.h"
#include "Foundation/Date.h"
#include "Platform/Appearance/ColorScheme.h"
#include "Platform/Desktop/WindowPlacement.h"
#include "Platform/WidgetHost/WidgetFamily.h"

#include <expected>
#include <optional>
#include <string>

namespace Widget {

/// What the command line says.
struct WidgetOptions {
    std::optional<Platform::WidgetFamily> family;
    std::optional<Foundation::Date> fixedMoment;      ///< Absent for the system's clock.
    std::optional<Platform::ColorScheme> colorScheme; ///< Absent to follow the desktop.
    Platform::WindowPlacement placement = Platform::WindowPlacement::desktop;
    bool printsFirstFrame = false;
    bool quitsAfterFirstFrame = false;

    bool operator==(WidgetOptions const&) const = default;
};

/// The program has nothing to do but to say something.
struct EarlyEnd {
    int exitCode;     ///< 0 for an answer to a question, 2 for wrong use.
    std::string text; ///< For standard output with exit code 0, else one line for standard error.

    bool operator==(EarlyEnd const&) const = default;
};

/// Reads the command line. A moment without an offset is one of `calendar`.
std::expected<WidgetOptions, EarlyEnd> parseCommandLine(int count, char const* const* words,
                                                        Foundation::Calendar const& calendar);

} // namespace Widget

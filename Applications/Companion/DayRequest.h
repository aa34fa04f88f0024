#pragma once

#include "Applications/Companion/Invocation.h"
#include "Applications/Companion/ShownDay.h"
#include "Foundation/Date.h"
#include "Platform/Appearance/ColorScheme.h"
#include "Platform/WidgetHost/WidgetFamily.h"

#include <array>
#include <optional>
#include <string_view>

namespace Companion {

/// The options that name a picture's file, and the name that stands for standard output.
inline constexpr std::array pictureOptions = {"--png", "--svg", "--pdf"};
inline constexpr std::string_view standardOutput = "-";

/// What the person asked of a day, checked as a whole before anything is read or written.
struct DayRequest {
    std::optional<Foundation::Date> at;
    DayChoice day;
    Platform::WidgetFamily family;
    std::optional<Platform::ColorScheme> scheme;
    double scale;
    bool writesText;
    bool writesJSON;
    bool writesStatusBar;
};

/// Throws CommandError with ExitCode::wrongUse for values that make no sense, alone or together.
DayRequest dayRequest(Invocation const& invocation);

/// Whether a day is to be drawn.
bool drawsPictures(ArgumentValues const& values);

/// Whether the words ask for more than `showDay` can: what draws, or what reaches the backend.
bool needsWholeDay(ArgumentValues const& values);

/// Whether that option sends its picture to standard output.
bool goesToStandardOutput(ArgumentValues const& values, std::string_view option);

} // namespace Companion

#pragma once

#include <string_view>

/// Constants of the whole package.
namespace Meetings::MeetConfigEnum {

/// Title of the product's own calendar in the calendar store.
inline constexpr std::string_view nativeCalendarName = "Quillora";

/// Identifier of that calendar.
inline constexpr std::string_view nativeCalendarIdentifier = "quillora-native-calendar";

/// Subsystem of every structured log record of the package; each class adds its own category.
inline constexpr std::string_view loggerSubsystem = "com.zentorik.quillora";

} // namespace Meetings::MeetConfigEnum

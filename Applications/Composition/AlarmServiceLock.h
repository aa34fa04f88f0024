#pragma once

#include "Platform/EventStore/Folder/CalendarStorePlaces.h"

#include <chrono>
#include <filesystem>

/// One alarm service runs for each home, also where no bus does: two would ring everything twice.
namespace Composition::AlarmServiceLock {

/// The file whose lock a running service holds.
std::filesystem::path file(Platform::CalendarStorePlaces const& places);

/// How long a service that starts waits for the lock: longer than `isHeld` keeps it.
inline constexpr std::chrono::milliseconds patience{1000};

/// Whether a service runs. Makes no file, and takes the lock for no more than a moment.
bool isHeld(Platform::CalendarStorePlaces const& places);

} // namespace Composition::AlarmServiceLock

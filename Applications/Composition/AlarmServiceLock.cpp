#include "Applications/Composition/AlarmServiceLock.h"

#include "Platform/Files/PosixFileLocks.h"

#include <system_error>

namespace Composition::AlarmServiceLock {

std::filesystem::path file(Platform::CalendarStorePlaces const& places) {
    return places.configurationDirectory / ".quillora-alarms.lock";
}

bool isHeld(Platform::CalendarStorePlaces const& places) {
    std::error_code failure;
    // Taking the lock would make its file.
    if (!std::filesystem::exists(file(places), failure)) return false;
    auto const lock = Platform::PosixFileLocks().take(file(places), std::chrono::milliseconds(0));
    return !lock && lock.error() == std::errc::timed_out;
}

} // namespace Composition::AlarmServiceLock

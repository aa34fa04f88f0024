#include "Platform/Clock/SystemClock.h"

#include <chrono>

namespace Platform {

Foundation::Date SystemClock::now() const {
    std::chrono::duration<double> const sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return {.secondsSince1970 = sinceEpoch.count()};
}

} // namespace Platform

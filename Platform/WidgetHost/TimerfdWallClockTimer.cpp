#include "Platform/WidgetHost/TimerfdWallClockTimer.h"

#include "Foundation/FatalError.h"

#include <sys/timerfd.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstdint>
#include <utility>

namespace Platform {

namespace {

// The end of the year 9999: armed, so that a clock that is set still wakes, but never due.
constexpr double never = 253'402'300'799;

itimerspec timerSpec(std::optional<Foundation::Date> deadline) {
    double const seconds = deadline ? deadline->secondsSince1970 : never;
    itimerspec spec{};
    if (!(seconds < never)) {
        spec.it_value.tv_sec = static_cast<time_t>(never);
    } else if (seconds <= 0) {
        // All zero would disarm the timer.
        spec.it_value.tv_nsec = 1;
    } else {
        // Rounded up: a wake before the deadline would find nothing due.
        double const whole = std::floor(seconds);
        double const nanoseconds = std::ceil((seconds - whole) * 1e9) + 1;
        spec.it_value.tv_sec = static_cast<time_t>(whole) + (nanoseconds >= 1e9 ? 1 : 0);
        spec.it_value.tv_nsec = nanoseconds >= 1e9 ? 0 : static_cast<long>(nanoseconds);
    }
    return spec;
}

int makeTimer() {
    int const descriptor = timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC);
    if (descriptor < 0) {
        Foundation::fatalError("unable to make a wall-clock timer: the system has no descriptor left");
    }
    return descriptor;
}

} // namespace

TimerfdWallClockTimer::TimerfdWallClockTimer()
    : descriptor(makeTimer()),
      readable(GLibSource::watchingDescriptor(descriptor, [this] { readTimer(); })) {
    schedule(std::nullopt);
}

TimerfdWallClockTimer::~TimerfdWallClockTimer() {
    readable = {};
    close(descriptor);
}

void TimerfdWallClockTimer::onWake(std::function<void(Wake)> newHandler) {
    handler = std::move(newHandler);
}

void TimerfdWallClockTimer::schedule(std::optional<Foundation::Date> deadline) {
    auto const spec = timerSpec(deadline);
    int const result =
        timerfd_settime(descriptor, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &spec, nullptr);
    if (result != 0 && errno == ECANCELED) {
        // The timer is armed, but this call has used up the news that the clock was set.
        missedChange = GLibSource::afterDelay(0, [this] { tell(Wake::clockSet); });
    }
}

void TimerfdWallClockTimer::readTimer() {
    std::uint64_t expirations = 0;
    auto const count = read(descriptor, &expirations, sizeof expirations);
    if (count < 0 && errno == ECANCELED) {
        tell(Wake::clockSet);
    } else if (count > 0) {
        tell(Wake::deadline);
    }
}

void TimerfdWallClockTimer::tell(Wake wake) const {
    if (auto const current = handler) {
        current(wake);
    }
}

} // namespace Platform

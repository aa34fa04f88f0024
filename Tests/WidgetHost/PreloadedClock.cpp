// A machine whose clock a test sets, for one program: preloaded, this library stands between the program and
// the kernel wherever the time of day is read, and where a timer on the time of day is set and read. To set
// the clock of the machine itself takes privileges, and would disturb everybody on it.
//
// The timer is a true kernel timer, armed for the true moment. When the test sets the clock it is made to run
// out at once, and what the program then reads is what the kernel tells of a clock that was set.

#include "Tests/WidgetHost/ClockPage.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <ctime>

namespace {

constexpr std::int64_t billion = 1'000'000'000;

std::atomic<ClockPage*> sharedPage = nullptr;

// The program's one timer on the time of day. Only one thread uses it.
constexpr int none = -2; // Nor what a failed call yields.
int timer = none;
std::uint32_t timesKnown = 0;
int armedFlags = 0;
itimerspec armedFor{};

// Absent in what a sanitizer asks before the environment is there.
ClockPage* page() {
    if (auto* const known = sharedPage.load()) return known;
    char const* const path = std::getenv(ClockPage::pathVariable);
    if (path == nullptr) return nullptr;
    int const file = ::open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0) std::abort();
    void* const memory = ::mmap(nullptr, sizeof(ClockPage), PROT_READ, MAP_SHARED, file, 0);
    ::syscall(SYS_close, file);
    if (memory == MAP_FAILED) std::abort();
    sharedPage = static_cast<ClockPage*>(memory);
    return sharedPage;
}

timespec moved(timespec moment, std::int64_t nanoseconds) {
    auto const total = moment.tv_sec * billion + moment.tv_nsec + nanoseconds;
    // Long past is past; all zero would disarm a timer.
    if (total <= 0) return {.tv_sec = 0, .tv_nsec = 1};
    return {.tv_sec = total / billion, .tv_nsec = total % billion};
}

timespec timeOfDay() {
    timespec moment{};
    ::syscall(SYS_clock_gettime, CLOCK_REALTIME, &moment);
    auto const* const known = page();
    return known == nullptr ? moment : moved(moment, known->ahead);
}

int settime(int descriptor, int flags, itimerspec const* wanted, itimerspec* former) {
    return static_cast<int>(::syscall(SYS_timerfd_settime, descriptor, flags, wanted, former));
}

int armForTrueMoment() {
    auto spec = armedFor;
    bool const isArmed = spec.it_value.tv_sec != 0 || spec.it_value.tv_nsec != 0;
    if (isArmed) spec.it_value = moved(spec.it_value, -page()->ahead);
    return settime(timer, armedFlags, &spec, nullptr);
}

// Whether the clock was set since the program was last told, which this call then does.
bool wasSet() {
    auto const times = page()->timesItWasSet.load();
    if (times == timesKnown) return false;
    timesKnown = times;
    armForTrueMoment();
    return true;
}

} // namespace

extern "C" {

int clock_gettime(clockid_t clock, timespec* moment) noexcept {
    if (clock != CLOCK_REALTIME && clock != CLOCK_REALTIME_COARSE)
        return static_cast<int>(::syscall(SYS_clock_gettime, clock, moment));
    *moment = timeOfDay();
    return 0;
}

int gettimeofday(timeval* moment, void*) noexcept {
    auto const now = timeOfDay();
    *moment = {.tv_sec = now.tv_sec, .tv_usec = now.tv_nsec / 1000};
    return 0;
}

time_t time(time_t* moment) noexcept {
    auto const now = timeOfDay();
    if (moment != nullptr) *moment = now.tv_sec;
    return now.tv_sec;
}

int timerfd_create(clockid_t clock, int flags) noexcept {
    if (clock != CLOCK_REALTIME || page() == nullptr)
        return static_cast<int>(::syscall(SYS_timerfd_create, clock, flags));
    char const* const shared = std::getenv(ClockPage::timerVariable);
    // The test shares one timer, and would not reach a second one.
    if (shared == nullptr || timer != none) std::abort();
    timesKnown = page()->timesItWasSet;
    timer = ::fcntl(std::atoi(shared), F_DUPFD_CLOEXEC, 0);
    return timer;
}

int timerfd_settime(int descriptor, int flags, itimerspec const* wanted, itimerspec* former) noexcept {
    if (descriptor != timer) return settime(descriptor, flags, wanted, former);
    // What is needed is done, and nothing else: a wrong moment must not pass unseen.
    if (flags != (TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET) || former != nullptr) std::abort();
    armedFlags = flags;
    armedFor = *wanted;
    int const result = armForTrueMoment();
    // As the kernel has it: the timer is armed, and yet the call fails.
    if (result == 0 && wasSet()) {
        errno = ECANCELED;
        return -1;
    }
    return result;
}

ssize_t read(int descriptor, void* buffer, size_t size) {
    if (descriptor == timer && wasSet()) {
        errno = ECANCELED;
        return -1;
    }
    return ::syscall(SYS_read, descriptor, buffer, size);
}

int close(int descriptor) {
    if (descriptor == timer) timer = none;
    return static_cast<int>(::syscall(SYS_close, descriptor));
}

} // extern "C"

#include "Tests/WidgetHost/MachineClock.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <ctime>
#include <stdexcept>
#include <string>

namespace {

constexpr std::int64_t billion = 1'000'000'000;

std::int64_t nanoseconds(timespec moment) {
    return moment.tv_sec * billion + moment.tv_nsec;
}

std::int64_t nanosecondsOf(clockid_t clock) {
    timespec moment{};
    // The kernel's own, also where the test itself lives by the clock that it sets.
    ::syscall(SYS_clock_gettime, clock, &moment);
    return nanoseconds(moment);
}

std::int64_t nanoseconds(double seconds) {
    return std::llround(seconds * 1e6) * 1000;
}

// What `clock` yields when `read` is done: on a busy machine much can pass between two lines. Rather a
// millisecond too little than too much, so that nothing that is on time looks early.
template <typename Clock, typename Read>
std::int64_t atOneMoment(Clock const& clock, Read const& read) {
    for (;;) {
        auto const before = clock();
        read();
        if (clock() - before < billion / 1000) return before;
    }
}

} // namespace

MachineClock::MachineClock(double moment) : timer(::timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK)) {
    auto const file = folder.place("clock", std::string(sizeof(ClockPage), '\0'));
    int const descriptor = ::open(file.c_str(), O_RDWR | O_CLOEXEC);
    void* const memory =
        ::mmap(nullptr, sizeof(ClockPage), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    ::close(descriptor);
    if (memory == MAP_FAILED || timer < 0) throw std::runtime_error("no clock can be made");
    page = static_cast<ClockPage*>(memory);
    set(moment);
}

MachineClock::~MachineClock() {
    ::munmap(page, sizeof(ClockPage));
    ::close(timer);
}

void MachineClock::addTo(ChildProcess::Environment& environment) const {
    environment["LD_PRELOAD"] = QUILLORA_BUILD_DIR "/tests/libquillora_preloaded_clock.so";
    environment[ClockPage::pathVariable] = folder.path() / "clock";
    environment[ClockPage::timerVariable] = std::to_string(timer);
}

double MachineClock::now() const {
    return static_cast<double>(nanosecondsOf(CLOCK_REALTIME) + page->ahead) / 1e9;
}

void MachineClock::set(double moment) {
    page->ahead = nanoseconds(moment) - nanosecondsOf(CLOCK_REALTIME);
    ++page->timesItWasSet;
    // Only now, so that a program that arms its timer meanwhile finds out by itself.
    itimerspec const atOnce{.it_interval = {}, .it_value = {.tv_sec = 0, .tv_nsec = 1}};
    ::timerfd_settime(timer, 0, &atOnce, nullptr);
}

void MachineClock::sleepUntil(double moment) const {
    auto const end = nanoseconds(moment) - page->ahead;
    timespec const spec{.tv_sec = end / billion, .tv_nsec = end % billion};
    while (::clock_nanosleep(CLOCK_REALTIME, TIMER_ABSTIME, &spec, nullptr) == EINTR) {
    }
}

std::optional<double> MachineClock::armedFor() const {
    itimerspec left{};
    auto const read =
        atOneMoment([&] { return nanosecondsOf(CLOCK_REALTIME); }, [&] { ::timerfd_gettime(timer, &left); });
    auto const remaining = nanoseconds(left.it_value);
    if (remaining == 0) return std::nullopt;
    return static_cast<double>(read + page->ahead + remaining) / 1e9;
}

void MachineClock::disarm() const {
    itimerspec const none{};
    ::timerfd_settime(timer, 0, &none, nullptr);
}

std::int64_t MachineClock::sinceStart(double moment) const {
    std::int64_t timeOfDay = 0;
    auto const sinceStart = atOneMoment([] { return nanosecondsOf(CLOCK_BOOTTIME); },
                                        [&] { timeOfDay = nanosecondsOf(CLOCK_REALTIME); });
    return (sinceStart + nanoseconds(moment) - timeOfDay - page->ahead) / 1000;
}

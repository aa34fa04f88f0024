#pragma once

#include "Tests/Platform/TemporaryFolder.h"
#include "Tests/WidgetHost/ChildProcess.h"
#include "Tests/WidgetHost/ClockPage.h"

#include <cstdint>
#include <optional>

/// The clock of the machine on which a test runs its programs: it goes on by itself, as every clock, and the
/// test sets it. Moments are seconds since 1970 by that clock, where nothing else is said.
class MachineClock {
public:
    explicit MachineClock(double moment);
    MachineClock(MachineClock const&) = delete;
    MachineClock& operator=(MachineClock const&) = delete;
    ~MachineClock();

    /// Programs started with these live by this clock, one at a time.
    void addTo(ChildProcess::Environment& environment) const;

    [[nodiscard]] double now() const;

    /// Sets the clock, and tells the program on it, as the kernel does.
    void set(double moment);

    /// Waits until the clock reaches that moment.
    void sleepUntil(double moment) const;

    /// The moment for which the program armed its timer; absent while it is not armed.
    [[nodiscard]] std::optional<double> armedFor() const;
    /// Forgets what a program that has ended left armed.
    void disarm() const;

    /// How many microseconds after the machine's start a moment is, by the clock as it stands now.
    [[nodiscard]] std::int64_t sinceStart(double moment) const;

private:
    TemporaryFolder folder;
    ClockPage* page;
    int timer;
};

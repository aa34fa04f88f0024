#pragma once

#include "Foundation/Environment.h"

#include <atomic>
#include <utility>

namespace Companion {

/// The option by which "sources refresh" gives way to everything else.
inline constexpr auto refreshInBackground = "--in-background";

/// Starts "quillora sources refresh" apart from this program, which need not wait for it: for an answer that
/// not every calendar file was looked at for. When it does not start, the next answer is no worse off than
/// this one, and in a quarter of an hour every file is looked at anyway.
class CalendarRefresh {
public:
    explicit CalendarRefresh(Foundation::Environment environment) : environment(std::move(environment)) {}
    CalendarRefresh(CalendarRefresh const&) = delete;
    CalendarRefresh& operator=(CalendarRefresh const&) = delete;

    /// It is started with the end of this object, when the answer is out: until then it would only be in its
    /// way.
    ~CalendarRefresh();

    /// There is something to look at. From any thread.
    void fallDue() { isDue = true; }

private:
    Foundation::Environment environment;
    std::atomic<bool> isDue = false;
};

} // namespace Companion

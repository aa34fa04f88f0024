#pragma once

#include "Foundation/Environment.h"

#include <thread>
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

    /// At the first call; the others do nothing. It is done by a thread of its own: whoever starts a program
    /// waits until that is loaded, two milliseconds that the answer can use.
    void start();

private:
    Foundation::Environment environment;
    bool hasStarted = false;
    std::jthread starter;
};

} // namespace Companion

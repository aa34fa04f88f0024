#pragma once

#include "Foundation/Environment.h"

namespace Companion {

/// The option by which "sources refresh" gives way to everything else.
inline constexpr auto refreshInBackground = "--in-background";

/// Starts "quillora sources refresh" apart from this program, which need not wait for it: for after an answer
/// that not every calendar file was looked at for. When it does not start, the next answer is no worse off
/// than this one, and in a quarter of an hour every file is looked at anyway.
void startCalendarRefresh(Foundation::Environment const& environment);

} // namespace Companion

#pragma once

namespace Widget {

/// Milliseconds since this process was started, as the kernel counts them (in steps of a clock tick).
double millisecondsSinceProcessStart();

} // namespace Widget

#pragma once

#include <string_view>

namespace Foundation {

/// Ends the process over a programming error: `message` goes to standard error, unbuffered, followed by a
/// line feed, then abort(3). Never used for anything that outside data can cause.
[[noreturn]] void fatalError(std::string_view message);

} // namespace Foundation

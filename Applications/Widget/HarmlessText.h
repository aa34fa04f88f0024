#pragma once

#include <string>
#include <string_view>

namespace Widget {

/// A calendar's own text as one line that is safe to show, cut where it is longer than anybody reads.
std::string harmless(std::string_view text);

} // namespace Widget

#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Platform {

/// `text` with "%1$@" to "%9$@" replaced by the value of that place, and "%%" by "%". A language may name the
/// values in any order and as often as it needs. A place without a value, and everything else, stays as it
/// is: a text from a table never reaches printf. What a value holds is not read again.
std::string withValues(std::string_view text, std::vector<std::string> const& values);

} // namespace Platform

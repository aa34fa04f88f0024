#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Platform {

/// `text` with "%1$@" to "%9$@" replaced by the value of that place, and "%%" by "%". A language may name the
/// values in any order and as often as it needs. A place without a value, and everything else, stays as it
/// is: a text from a table never reaches printf. What a value holds is not read again.
std::string withValues(std::string_view text, std::vector<std::string> const& values);

/// The other way round: the values with which `text`, filled in the order of its places, gives `filled`. Each
/// is as short as can be. Absent where it gives something else; `text` names each place once, in rising
/// order.
std::optional<std::vector<std::string>> valuesIn(std::string_view text, std::string_view filled);

} // namespace Platform

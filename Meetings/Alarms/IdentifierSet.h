#pragma once

#include "Platform/Defaults/UserDefaults.h"

#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <system_error>

/// A set of identifiers, stored as a list of texts whose order means nothing.
namespace Meetings::IdentifierSet {

/// Empty when nothing is stored.
std::set<std::string> load(Platform::UserDefaults const& defaults, std::string_view key);

[[nodiscard]] std::error_code save(Platform::UserDefaults& defaults, std::string_view key,
                                   std::set<std::string> const& identifiers);

/// Loads, changes and saves the whole set as one step.
[[nodiscard]] std::error_code update(Platform::UserDefaults& defaults, std::string_view key,
                                     std::function<void(std::set<std::string>&)> const& change);

} // namespace Meetings::IdentifierSet

#pragma once

#include <cstddef>

/// How much of an HTML text is read. Past a limit the reading ends with what it has: a description that goes
/// that far was not written to be read. Together they keep the largest text below a tenth of a second.
namespace Platform::HTMLLimits {

inline constexpr std::size_t bytes = 1024 * 1024;
inline constexpr std::size_t tags = 50'000; ///< Those that shape lines.
inline constexpr std::size_t depth = 256;

} // namespace Platform::HTMLLimits

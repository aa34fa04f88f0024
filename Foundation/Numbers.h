#pragma once

#include <cstdint>
#include <string>

namespace Foundation {

/// The whole part of `value`, truncated toward zero. NaN, an infinity, or a whole part outside the type is
/// a fatal error.
std::int64_t truncatedInteger(double value);

/// `left + right`; overflow is a fatal error.
std::int64_t checkedAdd(std::int64_t left, std::int64_t right);

/// `left * right`; overflow is a fatal error.
std::int64_t checkedMultiply(std::int64_t left, std::int64_t right);

/// The shortest decimal that reads back to `value`: fixed notation, always with a fractional part, "." as
/// the point whatever the locale ("1700000000.0"). A value that is not finite is a fatal error.
std::string shortestDecimal(double value);

} // namespace Foundation

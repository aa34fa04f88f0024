#include "Foundation/Numbers.h"

#include "Foundation/FatalError.h"

#include <array>
#include <charconv>
#include <cmath>

namespace Foundation {

std::int64_t truncatedInteger(double value) {
    // Both bounds are exact floats: -2^63 itself fits, 2^63 does not. NaN fails either test.
    bool const fits = value >= -0x1p63 && value < 0x1p63;
    if (!fits) fatalError("a floating-point value cannot be converted to a 64-bit integer");
    return static_cast<std::int64_t>(value);
}

std::int64_t checkedAdd(std::int64_t left, std::int64_t right) {
    std::int64_t sum = 0;
    if (__builtin_add_overflow(left, right, &sum)) fatalError("integer overflow in an addition");
    return sum;
}

std::int64_t checkedMultiply(std::int64_t left, std::int64_t right) {
    std::int64_t product = 0;
    if (__builtin_mul_overflow(left, right, &product)) fatalError("integer overflow in a multiplication");
    return product;
}

std::string shortestDecimal(double value) {
    if (!std::isfinite(value)) fatalError("a value that is not finite has no decimal text");
    std::array<char, 512> buffer;
    auto const result =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed);
    std::string text(buffer.data(), result.ptr);
    if (text.find('.') == std::string::npos) text += ".0";
    return text;
}

} // namespace Foundation

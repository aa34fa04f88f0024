#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace Foundation {

/// The MD5 digest (RFC 1321) of `bytes`. It spreads texts over 128 bits and has no security role, so it
/// comes from a library that no crypto policy switches off.
std::array<std::uint8_t, 16> md5(std::string_view bytes);

} // namespace Foundation

#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Foundation {

/// The bytes as base64 (RFC 4648, section 4), padded and on one line.
std::string base64(std::string_view bytes);

/// The bytes that `text` stands for; absent when it is not exactly what `base64` writes.
std::optional<std::string> bytesFromBase64(std::string const& text);

} // namespace Foundation

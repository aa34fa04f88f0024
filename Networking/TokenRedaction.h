#pragma once

#include <string>
#include <string_view>

namespace Networking {

/// `text` with "[token]" in place of every occurrence of `token`, plain or as JSON or a URL spells it:
/// servers repeat what they were sent. A token of fewer than eight bytes, which any text could hold by
/// chance, is taken out only after "Bearer ".
std::string withoutToken(std::string_view text, std::string_view token);

} // namespace Networking

#pragma once

#include "Foundation/URL.h"

#include <string_view>
#include <vector>

namespace Foundation {

/// Whether a link leads to a page: its scheme is "http" or "https", in any letter case, and it names a host.
bool isWebLink(URL const& link);

/// The web links that stand in `text`, in their order. One ends at the first blank, quotation mark, bracket
/// of any kind but "(", or control character, and loses the punctuation of the sentence around it.
std::vector<URL> webLinksIn(std::string_view text);

} // namespace Foundation

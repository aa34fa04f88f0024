#pragma once

#include "Foundation/URL.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Foundation {

/// One item of a query. Without a value it is written as the bare name.
struct URLQueryItem {
    std::string name;
    std::optional<std::string> value;

    friend bool operator==(URLQueryItem const&, URLQueryItem const&) = default;
};

/// `base` with `path` appended to its path, never resolved against it: exactly one slash stands at the join,
/// and whatever a path may not hold (RFC 3986), "%" and ";" included, is escaped. The base's own escapes
/// stay. A query list that is not empty replaces the base's query; items keep their order and duplicates.
/// Absent when `base` is no absolute link.
std::optional<URL> buildURL(URL const& base, std::string_view path, std::vector<URLQueryItem> const& query);

} // namespace Foundation

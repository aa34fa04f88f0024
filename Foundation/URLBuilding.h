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

/// A link that paths are appended to, read once.
class BaseURL final {
public:
    /// Absent when `base` is no absolute link.
    static std::optional<BaseURL> of(URL const& base);

    /// The link with `path` appended to its own, never resolved against it: exactly one slash stands at the
    /// join, and whatever a path may not hold (RFC 3986), "%" and ";" included, is escaped. The base's own
    /// escapes stay. A query list that is not empty replaces the base's query; items keep their order and
    /// duplicates.
    [[nodiscard]] URL appending(std::string_view path, std::vector<URLQueryItem> const& query) const;

private:
    std::string beforePath; ///< Up to where the path goes on, without a slash.
    std::string query;      ///< With its "?", or empty.
    std::string fragment;   ///< With its "#", or empty.
};

} // namespace Foundation

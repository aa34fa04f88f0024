#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Foundation {

/// A link as it was written. Equal by its text; nothing is normalised.
struct URL {
    std::string absoluteString;

    /// A link that RFC 3986 can parse, with non-ASCII and blanks escaped first. Absent for anything else.
    static std::optional<URL> fromText(std::string_view text);

    friend bool operator==(URL const&, URL const&) = default;
};

} // namespace Foundation

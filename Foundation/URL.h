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

/// Where a link leads, and what it bears besides a path.
struct URLPlace {
    std::string scheme; ///< In lower case.
    std::string host;   ///< Without its port; empty where there is none.
    bool hasUserInfo;   ///< A user's name, possibly with a password, before the host.
    bool hasQueryOrFragment;

    /// Absent for what is no absolute link.
    static std::optional<URLPlace> of(URL const& url);

    friend bool operator==(URLPlace const&, URLPlace const&) = default;
};

} // namespace Foundation
